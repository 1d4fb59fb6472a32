#include "Engine/Model/DraftRules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace qe::model {

namespace {

/// How a chain of references ends.
enum class EChain : std::uint8_t
{
    Ends,
    /// It is longer than kMaximumChain.
    TooLong,
    /// It meets some object twice.
    Cyclic,
};

/// Follows one kind of reference from every object of a table at once, in linear time however
/// long the chains are.
class ChainWalk
{
public:
    /// `next` returns the id that follows a record, empty at the end.
    ChainWalk(const ObjectTable& table, const std::function<amd_id(const ObjectRecord&)>& next);

    /// Returns how the chain from that object ends. An object that leads into a cycle without
    /// being part of it counts as Cyclic too. Unknown ids have chains that end.
    [[nodiscard]] EChain Classify(const amd_id& id) const;

private:
    static constexpr std::size_t kEndless = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t kUnknown = kEndless - 1;
    static constexpr std::size_t kOnThePath = kEndless - 2;

    const ObjectTable* mTable;
    /// Objects that follow each one, by position in the table; kEndless where that never ends.
    std::vector<std::size_t> mLengths;
};

ChainWalk::ChainWalk(const ObjectTable& table,
                     const std::function<amd_id(const ObjectRecord&)>& next)
    : mTable(&table), mLengths(table.GetRecords().size(), kUnknown)
{
    const std::span<const ObjectRecord> records = table.GetRecords();
    std::vector<std::size_t> path;
    for (std::size_t start = 0; start < records.size(); ++start) {
        // The length that the next object on the path back gets.
        std::size_t length = 0;
        const ObjectRecord* record = &records[start];
        for (path.clear(); record != nullptr; record = table.Find(next(*record))) {
            const auto position = static_cast<std::size_t>(record - records.data());
            if (mLengths[position] != kUnknown) {
                const bool isEndless =
                    mLengths[position] == kOnThePath || mLengths[position] == kEndless;
                length = isEndless ? kEndless : mLengths[position] + 1;
                break;
            }
            mLengths[position] = kOnThePath;
            path.push_back(position);
        }
        for (; !path.empty(); path.pop_back()) {
            mLengths[path.back()] = length;
            length = length == kEndless ? kEndless : length + 1;
        }
    }
}

EChain ChainWalk::Classify(const amd_id& id) const
{
    const ObjectRecord* record = mTable->Find(id);
    if (record == nullptr)
        return EChain::Ends;
    const std::size_t length =
        mLengths[static_cast<std::size_t>(record - mTable->GetRecords().data())];
    if (length == kEndless)
        return EChain::Cyclic;
    return length > kMaximumChain ? EChain::TooLong : EChain::Ends;
}

/// The place within which the name of a draft must be its own.
amd_id NameScope(const PlacedDraft& placed)
{
    switch (placed.draft->classCode) {
    case IdClassNamespace:
        return {};
    case IdClassFolder:
    case IdClassQueryItem:
        return placed.record->parent;
    default:
        return placed.record->space;
    }
}

/// Query subjects share their names with shortcuts, model filters with query filters.
std::int32_t NameClass(std::int32_t classCode)
{
    if (classCode == IdClassShortcut)
        return IdClassQuerySubject;
    return classCode == IdClassSpecFilter ? IdClassFilter : classCode;
}

/// The name of a draft and where it must be its own.
struct PlacedName
{
    amd_id scope;
    std::string_view name;
    std::size_t position;
};

/// Returns the names that must be their own, by the class that shares them; those of one scope
/// stand side by side.
std::map<std::int32_t, std::vector<PlacedName>> ListNames(const std::vector<PlacedDraft>& drafts)
{
    std::map<std::int32_t, std::vector<PlacedName>> ofClass;
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        const PlacedDraft& placed = drafts[i];
        const std::int32_t classCode = placed.draft->classCode;
        if (placed.isInTable && !placed.record->name.empty() && !IsJoinClass(classCode))
            ofClass[NameClass(classCode)].push_back(
                {.scope = NameScope(placed), .name = placed.record->name, .position = i});
    }
    // Builders mostly name one scope after the other.
    for (auto& [nameClass, names] : ofClass) {
        if (!std::ranges::is_sorted(names, {}, &PlacedName::scope))
            std::ranges::stable_sort(names, {}, &PlacedName::scope);
    }
    return ofClass;
}

/// The positions of a draft and of the first one that has its name.
using WithOwner = std::pair<std::size_t, std::size_t>;

/// Puts the names of one scope in order, and finds those that another one has before.
void FindTaken(std::span<PlacedName> names, std::vector<WithOwner>& taken)
{
    std::ranges::sort(names, [](const PlacedName& left, const PlacedName& right) {
        return std::tie(left.name, left.position) < std::tie(right.name, right.position);
    });
    for (std::size_t first = 0, i = 1; i < names.size(); ++i) {
        if (names[i].name == names[first].name)
            taken.emplace_back(names[i].position, names[first].position);
        else
            first = i;
    }
}

bool IsBound(std::int32_t bound)
{
    return bound == BMT_I_Association::CardinalityZero ||
           bound == BMT_I_Association::CardinalityOne ||
           bound == BMT_I_Association::CardinalityMany;
}

bool IsRange(const CardinalityRange& range)
{
    const bool knownOrUnknown =
        (IsBound(range.minimum) || range.minimum == BMT_I_Association::CardinalityUnknown) &&
        (IsBound(range.maximum) || range.maximum == BMT_I_Association::CardinalityUnknown);
    return knownOrUnknown && (range.maximum == BMT_I_Association::CardinalityUnknown ||
                              range.minimum <= range.maximum);
}

void CheckEnd(std::size_t position, EAspect aspect, const amd_id& end, const ObjectTable& table,
              ProblemList& problems)
{
    const ObjectRecord* object = end == amd_id() ? nullptr : table.Find(end);
    if (object == nullptr)
        return;
    const std::string title = aspect == EAspect::LeftEnd ? "left end" : "right end";
    if (!IsSubjectClass(end.classCode)) {
        problems.Add(position, aspect,
                     "has a " + title + " that is neither query subject nor shortcut: " +
                         std::string(ClassTitle(end.classCode)) + " \"" + object->name + '"');
        return;
    }
    // An endless chain is reported where the chain is.
    const ObjectRecord* target = table.Find(table.GetTarget(end));
    if (target != nullptr && target->id.classCode != IdClassQuerySubject) {
        problems.Add(position, aspect,
                     "has a " + title + " that does not lead to a query subject: shortcut \"" +
                         object->name + "\" stands for " +
                         std::string(ClassTitle(target->id.classCode)) + " \"" + target->name +
                         '"');
    }
}

} // namespace

void CheckNames(const std::vector<PlacedDraft>& drafts, ProblemList& problems)
{
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        if (drafts[i].record->name.empty())
            problems.Add(i, EAspect::Name, "has no name");
    }
}

void CheckUniqueNames(const std::vector<PlacedDraft>& drafts, ProblemList& problems)
{
    std::vector<WithOwner> taken;
    for (auto& [nameClass, names] : ListNames(drafts)) {
        for (std::span<PlacedName> rest = names; !rest.empty();) {
            const amd_id& scope = rest.front().scope;
            const auto end = std::ranges::find_if(
                rest, [&scope](const amd_id& other) { return other != scope; }, &PlacedName::scope);
            const auto count = static_cast<std::size_t>(end - rest.begin());
            FindTaken(rest.first(count), taken);
            rest = rest.subspan(count);
        }
    }
    std::ranges::sort(taken);
    for (const auto& [position, owner] : taken) {
        const PlacedDraft& first = drafts[owner];
        problems.Add(position, EAspect::Name,
                     "has the name of another object beside it: " +
                         std::string(ClassTitle(first.draft->classCode)) + ' ' +
                         ToText(first.record->id));
    }
}

void BreakParentCycles(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
                       ProblemList& problems)
{
    const ChainWalk walk(table, [](const ObjectRecord& record) { return record.parent; });
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        const EChain chain = walk.Classify(drafts[i].record->id);
        if (!IsContainerClass(drafts[i].draft->classCode) || chain == EChain::Ends)
            continue;
        problems.Add(i, EAspect::Parent,
                     chain == EChain::Cyclic ? "has a chain of parents that is cyclic"
                                             : "lies too deep: more than " +
                                                   std::to_string(kMaximumChain) + " parents");
        drafts[i].record->parent = {};
    }
}

amd_id SpaceAround(const ObjectTable& table, const amd_id& parent)
{
    const ObjectRecord* record = table.Find(parent);
    while (record != nullptr && record->id.classCode != IdClassNamespace)
        record = table.Find(record->parent);
    return record == nullptr ? amd_id() : record->id;
}

void CheckCardinalities(const std::vector<PlacedDraft>& drafts, ProblemList& problems)
{
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        const std::int32_t classCode = drafts[i].draft->classCode;
        if (classCode != IdClassRelationship && classCode != IdClassSpecJoin)
            continue;
        if (!IsRange(drafts[i].record->leftCardinality))
            problems.Add(i, EAspect::LeftCardinality,
                         "has a cardinality at its left end that is not a valid range");
        if (!IsRange(drafts[i].record->rightCardinality))
            problems.Add(i, EAspect::RightCardinality,
                         "has a cardinality at its right end that is not a valid range");
    }
}

void CheckTargets(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
                  ProblemList& problems)
{
    const ChainWalk walk(table, [](const ObjectRecord& record) { return record.referenced; });
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        const amd_id& referenced = drafts[i].record->referenced;
        if (referenced == amd_id())
            continue;
        if (drafts[i].draft->classCode == IdClassRelationshipShortcut &&
            referenced.classCode != IdClassRelationship &&
            referenced.classCode != IdClassRelationshipShortcut) {
            problems.Add(i, EAspect::Target,
                         "must stand for a relationship of class 102 or a relationship shortcut, "
                         "not for " +
                             ToText(referenced));
            continue;
        }
        const EChain chain = walk.Classify(drafts[i].record->id);
        if (chain == EChain::Cyclic)
            problems.Add(i, EAspect::Target, "has a chain of shortcuts that is cyclic");
        else if (chain == EChain::TooLong)
            problems.Add(i, EAspect::Target,
                         "stands behind a chain of more than " + std::to_string(kMaximumChain) +
                             " shortcuts");
    }
}

void CheckEnds(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
               ProblemList& problems)
{
    for (std::size_t i = 0; i < drafts.size(); ++i) {
        CheckEnd(i, EAspect::LeftEnd, drafts[i].record->left, table, problems);
        CheckEnd(i, EAspect::RightEnd, drafts[i].record->right, table, problems);
    }
}

} // namespace qe::model
