#include "Engine/Model/DraftCompiler.h"

#include "Engine/Model/DraftRules.h"
#include "Engine/Model/ModelError.h"
#include "Engine/Model/NameLookup.h"
#include "Engine/Model/ProblemList.h"
#include "Engine/Model/ReferenceFinder.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <map>
#include <span>
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
    explicit DraftCompiler(const std::deque<ObjectDraft>& drafts) : mProblems(drafts)
    {
        for (const ObjectDraft& draft : drafts)
            mDrafts.push_back({.draft = &draft});
    }

    ObjectTable Compile()
    {
        FillTable();
        CheckNames(mDrafts, mProblems);
        PlaceContainers();
        PlaceObjects();
        CheckUniqueNames(mDrafts, mProblems);
        FollowReferences();
        CheckCardinalities(mDrafts, mProblems);
        CheckTargets(mDrafts, mTable, mProblems);
        CheckEnds(mDrafts, mTable, mProblems);
        mProblems.RaiseIfAny();
        return std::move(mTable);
    }

private:
    /// Puts the drafts into the table, but for those whose ids cannot be: references lead to the
    /// first object of an id.
    void FillTable();
    /// Returns the positions of the drafts whose ids are right, each id once, in the order of the
    /// ids.
    [[nodiscard]] std::vector<std::size_t> SortById();
    /// Finds the parents of folders and namespaces.
    void PlaceContainers();
    /// Finds the parents and namespaces of all other objects.
    void PlaceObjects();
    void PlaceItems();
    /// Refuses the parent that was found for a draft when objects of its class cannot be its
    /// children.
    void CheckParent(std::size_t position);
    /// Finds ends and targets.
    void FollowReferences();
    /// Returns the kinds of names among which ends and targets are looked for.
    [[nodiscard]] std::vector<ENameKind> GetReferredKinds() const;

    std::vector<PlacedDraft> mDrafts;
    ObjectTable mTable;
    /// The records that are not in the table; references to them stay valid.
    std::deque<ObjectRecord> mOutside;
    ProblemList mProblems;
};

std::vector<std::size_t> DraftCompiler::SortById()
{
    // Builders number the objects of each class as they come: class by class they are in order.
    std::map<std::pair<std::int32_t, std::int32_t>, std::vector<std::size_t>> ofClass;
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const ObjectDraft& draft = *mDrafts[i].draft;
        const amd_id& id = draft.record.id;
        if (id.IsValid() && id.classCode == draft.classCode)
            ofClass[{id.domain, id.classCode}].push_back(i);
        else
            mProblems.Add(i, EAspect::Id,
                          "cannot have the id " + ToText(id) + ": its class is " +
                              std::to_string(draft.classCode) + ", its number not 0");
    }
    const auto getId = [this](std::size_t i) -> const amd_id& {
        return mDrafts[i].draft->record.id;
    };
    std::vector<std::size_t> first;
    first.reserve(mDrafts.size());
    for (auto& [kind, order] : ofClass) {
        if (!std::ranges::is_sorted(order, {}, getId))
            std::ranges::stable_sort(order, {}, getId);
        for (const std::size_t i : order) {
            if (first.empty() || getId(first.back()) != getId(i))
                first.push_back(i);
            else
                mProblems.Add(i, EAspect::Id,
                              "has the id " + ToText(getId(i)) + " of another object, \"" +
                                  mDrafts[first.back()].draft->record.name + '"');
        }
    }
    return first;
}

void DraftCompiler::FillTable()
{
    const std::vector<std::size_t> order = SortById();
    std::vector<ObjectRecord> records;
    records.reserve(order.size());
    for (const std::size_t i : order)
        records.push_back(mDrafts[i].draft->record);
    mTable = ObjectTable(std::move(records));
    const std::span<ObjectRecord> stored = mTable.EditRecords();
    for (std::size_t position = 0; position < order.size(); ++position) {
        mDrafts[order[position]].record = &stored[position];
        mDrafts[order[position]].isInTable = true;
    }
    for (PlacedDraft& placed : mDrafts) {
        if (!placed.isInTable)
            placed.record = &mOutside.emplace_back(placed.draft->record);
    }
}

void DraftCompiler::PlaceContainers()
{
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const ObjectDraft& draft = *mDrafts[i].draft;
        if (IsContainerClass(draft.classCode) && !draft.parent.IsEmpty())
            open.push_back(i);
    }
    const std::vector<ENameKind> nameKinds{ENameKind::Container};
    ReferenceFinder finder(mTable, nameKinds, mProblems);
    // A qualified name is only known once the containers that it passes are placed themselves:
    // each round places those that it can, until a round changes nothing.
    for (bool lastRound = false; !open.empty();) {
        std::vector<std::size_t> left;
        std::vector<std::pair<std::size_t, amd_id>> placed;
        for (const std::size_t i : open) {
            const Reference& parent = mDrafts[i].draft->parent;
            const amd_id id = lastRound
                                  ? finder.Find(i, mDrafts[i], parent, {EAspect::Parent, nameKinds})
                                  : finder.TryFind(mDrafts[i], parent, nameKinds);
            if (id == amd_id())
                left.push_back(i);
            else
                placed.emplace_back(i, id);
        }
        for (const auto& [i, id] : placed)
            mDrafts[i].record->parent = id;
        if (lastRound)
            break;
        lastRound = placed.empty();
        open.swap(left);
    }
    for (std::size_t i = 0; i < mDrafts.size(); ++i)
        CheckParent(i);
    BreakParentCycles(mDrafts, mTable, mProblems);
}

void DraftCompiler::CheckParent(std::size_t position)
{
    const PlacedDraft& placed = mDrafts[position];
    const amd_id parent = placed.record->parent;
    const bool fits = placed.draft->classCode == IdClassQueryItem
                          ? parent.classCode == IdClassQuerySubject
                          : IsContainerClass(parent.classCode);
    if (parent == amd_id() || fits)
        return;
    mProblems.Add(position, EAspect::Parent,
                  "cannot be held by the " + std::string(ClassTitle(parent.classCode)) + " \"" +
                      mTable.Find(parent)->name + '"');
    placed.record->parent = {};
}

void DraftCompiler::PlaceObjects()
{
    const ReferenceFinder::Wanted wanted{EAspect::Parent, {ENameKind::Container}};
    ReferenceFinder finder(mTable, wanted.nameKinds, mProblems);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const PlacedDraft& placed = mDrafts[i];
        const std::int32_t classCode = placed.draft->classCode;
        if (IsContainerClass(classCode) || classCode == IdClassQueryItem)
            continue;
        placed.record->parent = finder.Find(i, placed, placed.draft->parent, wanted);
        CheckParent(i);
    }
    // Only now: which of several parents of one name is meant does not depend on namespaces.
    for (const PlacedDraft& placed : mDrafts)
        placed.record->space = SpaceAround(mTable, placed.record->parent);
    PlaceItems();
}

void DraftCompiler::PlaceItems()
{
    const ReferenceFinder::Wanted wanted{EAspect::Parent, {ENameKind::Subject}};
    ReferenceFinder finder(mTable, wanted.nameKinds, mProblems);
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const PlacedDraft& placed = mDrafts[i];
        if (placed.draft->classCode != IdClassQueryItem)
            continue;
        if (placed.draft->parent.IsEmpty())
            mProblems.Add(i, EAspect::Parent, "has no parent");
        placed.record->parent = finder.Find(i, placed, placed.draft->parent, wanted);
        CheckParent(i);
        if (const ObjectRecord* subject = mTable.Find(placed.record->parent))
            placed.record->space = subject->space;
    }
}

std::vector<ENameKind> DraftCompiler::GetReferredKinds() const
{
    const bool hasShortcuts =
        std::any_of(mDrafts.begin(), mDrafts.end(), [](const PlacedDraft& placed) {
            return placed.draft->classCode == IdClassShortcut ||
                   placed.draft->classCode == IdClassRelationshipShortcut;
        });
    return hasShortcuts ? kShortcutNameKinds : std::vector<ENameKind>{ENameKind::Subject};
}

void DraftCompiler::FollowReferences()
{
    ReferenceFinder finder(mTable, GetReferredKinds(), mProblems);
    const ReferenceFinder::Wanted target{EAspect::Target, kShortcutNameKinds};
    const ReferenceFinder::Wanted join{EAspect::Target, {ENameKind::Join}};
    const ReferenceFinder::Wanted left{EAspect::LeftEnd, {ENameKind::Subject}};
    const ReferenceFinder::Wanted right{EAspect::RightEnd, {ENameKind::Subject}};
    // Names lead to objects past shortcuts that have no targets yet, whatever their order.
    std::vector<amd_id> targets(mDrafts.size());
    for (std::size_t i = 0; i < mDrafts.size(); ++i) {
        const PlacedDraft& placed = mDrafts[i];
        const ObjectDraft& draft = *placed.draft;
        if (draft.classCode == IdClassShortcut)
            targets[i] = finder.Find(i, placed, draft.links->referenced, target);
        if (draft.classCode == IdClassRelationshipShortcut)
            targets[i] = finder.Find(i, placed, draft.links->referenced, join);
        if (!IsJoinClass(draft.classCode))
            continue;
        placed.record->left = finder.Find(i, placed, draft.links->left, left);
        placed.record->right = finder.Find(i, placed, draft.links->right, right);
    }
    for (std::size_t i = 0; i < mDrafts.size(); ++i)
        mDrafts[i].record->referenced = targets[i];
}

} // namespace

ObjectTable CompileDrafts(const std::deque<ObjectDraft>& drafts)
{
    return DraftCompiler(drafts).Compile();
}

} // namespace qe::model
