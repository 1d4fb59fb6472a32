#include "Engine/Model/DraftCompiler.h"

#include "Engine/Model/DraftRules.h"
#include "Engine/Model/ModelError.h"
#include "Engine/Model/NameLookup.h"
#include "Engine/Model/ProblemList.h"
#include "Engine/Model/ReferenceFinder.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace qe::model {

namespace {

/// The kinds of names among which a shortcut looks for what it stands for; the first that has it
/// wins.
const std::vector<ENameKind> kShortcutNameKinds{
    ENameKind::Subject, ENameKind::Filter, ENameKind::Join, ENameKind::Container, ENameKind::Item};

class DraftCompiler
{
public:
    explicit DraftCompiler(const std::vector<ObjectDraft>& drafts)
        : mDrafts(drafts), mProblems(mDrafts)
    {}

    ObjectTable Compile()
    {
        DropBadIds();
        CheckNames(mDrafts, mProblems);
        PlaceContainers();
        PlaceObjects();
        CheckUniqueNames(mDrafts, mInTable, mProblems);
        FollowReferences();
        ObjectTable table = MakeTable();
        CheckCardinalities(mDrafts, mProblems);
        CheckTargets(mDrafts, table, mProblems);
        CheckEnds(mDrafts, table, mProblems);
        mProblems.RaiseIfAny();
        return table;
    }

private:
    /// Finds ids that cannot be; their drafts stay out of the table, so that references lead to
    /// the first object of an id.
    void DropBadIds();
    /// Finds the parents of folders and namespaces.
    void PlaceContainers();
    /// Finds the parents and namespaces of all other objects.
    void PlaceObjects();
    /// Refuses the parent that was found for a draft when objects of its class cannot be its
    /// children.
    void CheckParent(std::size_t position, const ObjectTable& table);
    /// Finds ends and targets.
    void FollowReferences();
    [[nodiscard]] ObjectTable MakeTable() const;

    /// Own copies, in which the references are filled in.
    std::vector<ObjectDraft> mDrafts;
    std::vector<bool> mInTable;
    ProblemList mProblems;
};

void DraftCompiler::DropBadIds()
{
    std::map<amd_id, std::size_t> owners;
    mInTable.assign(mDrafts.size(), false);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const amd_id& id = mDrafts[i].record.id;
        if (!id.IsValid() || id.classCode != mDrafts[i].classCode) {
            mProblems.Add(i, EAspect::Id,
                          "cannot have the id " + ToText(id) + ": its class is " +
                              std::to_string(mDrafts[i].classCode) + ", its number not 0");
            continue;
        }
        const auto [owner, isNew] = owners.emplace(id, i);
        mInTable[i] = isNew;
        if (!isNew) {
            const ObjectDraft& first = mDrafts[owner->second];
            mProblems.Add(i, EAspect::Id,
                          "has the id " + ToText(id) + " of another object, \"" +
                              first.record.name + '"');
        }
    }
}

ObjectTable DraftCompiler::MakeTable() const
{
    std::vector<ObjectRecord> records;
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        if (mInTable[i])
            records.push_back(mDrafts[i].record);
    }
    return ObjectTable(std::move(records));
}

void DraftCompiler::PlaceContainers()
{
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        if (IsContainerClass(mDrafts[i].classCode) && !mDrafts[i].parent.IsEmpty())
            open.push_back(i);
    }
    // A qualified name is only known once the containers that it passes are placed themselves:
    // each round places those that it can, until a round changes nothing.
    for (bool lastRound = false; !open.empty();) {
        const ObjectTable table = MakeTable();
        ReferenceFinder finder(table, mProblems);
        std::vector<std::size_t> left;
        std::vector<std::pair<std::size_t, amd_id>> placed;
        for (const std::size_t i : open) {
            const amd_id id =
                lastRound ? finder.Find(i, mDrafts[i], mDrafts[i].parent,
                                        {EAspect::Parent, {ENameKind::Container}})
                          : finder.TryFind(mDrafts[i], mDrafts[i].parent, {ENameKind::Container});
            if (id == amd_id())
                left.push_back(i);
            else
                placed.emplace_back(i, id);
        }
        for (const auto& [i, id] : placed)
            mDrafts[i].record.parent = id;
        if (lastRound)
            break;
        lastRound = placed.empty();
        open.swap(left);
    }
    const ObjectTable table = MakeTable();
    for (std::size_t i = 0; i < mDrafts.size(); ++i)
        CheckParent(i, table);
    BreakParentCycles(mDrafts, MakeTable(), mProblems);
}

void DraftCompiler::CheckParent(std::size_t position, const ObjectTable& table)
{
    ObjectDraft& draft = mDrafts[position];
    const amd_id parent = draft.record.parent;
    const bool fits = draft.classCode == IdClassQueryItem ? parent.classCode == IdClassQuerySubject
                                                          : IsContainerClass(parent.classCode);
    if (parent == amd_id() || fits)
        return;
    mProblems.Add(position, EAspect::Parent,
                  "cannot be held by the " + std::string(ClassTitle(parent.classCode)) + " \"" +
                      table.Find(parent)->name + '"');
    draft.record.parent = {};
}

void DraftCompiler::PlaceObjects()
{
    const ObjectTable containers = MakeTable();
    ReferenceFinder finder(containers, mProblems);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        ObjectDraft& draft = mDrafts[i];
        if (!IsContainerClass(draft.classCode) && draft.classCode != IdClassQueryItem) {
            draft.record.parent =
                finder.Find(i, draft, draft.parent, {EAspect::Parent, {ENameKind::Container}});
            CheckParent(i, containers);
        }
        draft.record.space = SpaceAround(containers, draft.record.parent);
    }
    const ObjectTable subjects = MakeTable();
    ReferenceFinder subjectFinder(subjects, mProblems);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        ObjectDraft& draft = mDrafts[i];
        if (draft.classCode != IdClassQueryItem)
            continue;
        if (draft.parent.IsEmpty())
            mProblems.Add(i, EAspect::Parent, "has no parent");
        draft.record.parent =
            subjectFinder.Find(i, draft, draft.parent, {EAspect::Parent, {ENameKind::Subject}});
        CheckParent(i, subjects);
        if (const ObjectRecord* subject = subjects.Find(draft.record.parent))
            draft.record.space = subject->space;
    }
}

void DraftCompiler::FollowReferences()
{
    const ObjectTable table = MakeTable();
    ReferenceFinder finder(table, mProblems);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        ObjectDraft& draft = mDrafts[i];
        ObjectRecord& record = draft.record;
        if (draft.classCode == IdClassShortcut)
            record.referenced =
                finder.Find(i, draft, draft.referenced, {EAspect::Target, kShortcutNameKinds});
        if (draft.classCode == IdClassRelationshipShortcut)
            record.referenced =
                finder.Find(i, draft, draft.referenced, {EAspect::Target, {ENameKind::Join}});
        if (!IsJoinClass(draft.classCode))
            continue;
        record.left = finder.Find(i, draft, draft.left, {EAspect::LeftEnd, {ENameKind::Subject}});
        record.right =
            finder.Find(i, draft, draft.right, {EAspect::RightEnd, {ENameKind::Subject}});
    }
}

} // namespace

ObjectTable CompileDrafts(const std::vector<ObjectDraft>& drafts)
{
    return DraftCompiler(drafts).Compile();
}

} // namespace qe::model
