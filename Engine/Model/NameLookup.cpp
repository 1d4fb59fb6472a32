#include "Engine/Model/NameLookup.h"

#include "Engine/Model/Names.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace qe::model {

namespace {

constexpr std::array kAllNameKinds{ENameKind::Container, ENameKind::Subject, ENameKind::Item,
                                   ENameKind::Join, ENameKind::Filter};
static_assert(kAllNameKinds.size() == kNameKindCount);

amd_id ScopeOf(const ObjectRecord& record)
{
    switch (NameKindOf(record.id.classCode)) {
    case ENameKind::Container:
        return {};
    case ENameKind::Item:
        return record.parent;
    default:
        return record.space;
    }
}

bool IsScopeLess(const NameIndex::Entry& left, const NameIndex::Entry& right)
{
    return std::tie(left.scope, left.id) < std::tie(right.scope, right.id);
}

/// Where a range begins that has no place yet.
constexpr std::size_t kUnplaced = static_cast<std::size_t>(-1);

bool SameName(const std::string& left, const std::string& right, NameLookup::ECase letterCase)
{
    return letterCase == NameLookup::ECase::Exact ? left == right
                                                  : FoldCase(left) == FoldCase(right);
}

bool SameNames(const QualifiedName& left, const QualifiedName& right, NameLookup::ECase letterCase)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [letterCase](const std::string& one, const std::string& other) {
                          return SameName(one, other, letterCase);
                      });
}

} // namespace

NameIndex::NameIndex(const std::vector<Entry>& entries) : mEntries(entries.size())
{
    const std::vector<Range*> ranges = CountNames(entries);
    std::size_t end = 0;
    for (Range* const range : ranges) {
        if (range->first == kUnplaced)
            range->first = std::exchange(end, end + std::exchange(range->count, 0));
    }
    for (std::size_t i = 0; i < entries.size(); ++i)
        mEntries[ranges[i]->first + ranges[i]->count++] = entries[i];
    for (const auto& [name, range] : mRanges) {
        const std::span<Entry> entriesOfName =
            std::span(mEntries).subspan(range.first, range.count);
        // Tables give their records in the order of ids, in which scopes mostly ascend too.
        if (!std::ranges::is_sorted(entriesOfName, IsScopeLess))
            std::ranges::sort(entriesOfName, IsScopeLess);
    }
}

std::vector<NameIndex::Range*> NameIndex::CountNames(const std::vector<Entry>& entries)
{
    std::vector<Range*> ranges;
    ranges.reserve(entries.size());
    for (const Entry& entry : entries) {
        Range& range = mRanges.try_emplace(FoldCase(entry.name), Range{kUnplaced, 0}).first->second;
        ++range.count;
        ranges.push_back(&range);
    }
    return ranges;
}

amd_id NameIndex::Find(const amd_id& scope, std::string_view name) const
{
    for (const Entry& entry : FindFolded(scope, name)) {
        if (entry.name == name)
            return entry.id;
    }
    return {};
}

std::span<const NameIndex::Entry> NameIndex::FindFolded(std::string_view name) const
{
    const auto found = mRanges.find(FoldCase(name));
    if (found == mRanges.end())
        return {};
    return std::span(mEntries).subspan(found->second.first, found->second.count);
}

std::span<const NameIndex::Entry> NameIndex::FindFolded(const amd_id& scope,
                                                        std::string_view name) const
{
    const std::span<const Entry> entries = FindFolded(name);
    const auto first = std::ranges::lower_bound(entries, scope, {}, &Entry::scope);
    const auto last = std::ranges::upper_bound(first, entries.end(), scope, {}, &Entry::scope);
    return {first, last};
}

void NameIndex::CollectNames(std::vector<std::string_view>& names) const
{
    for (const Entry& entry : mEntries)
        names.push_back(entry.name);
}

NameLookup::NameLookup(const ObjectTable& table) : NameLookup(table, kAllNameKinds)
{}

NameLookup::NameLookup(const ObjectTable& table, std::span<const ENameKind> nameKinds)
    : mTable(&table)
{
    std::array<bool, kNameKindCount> isWanted{};
    for (const ENameKind nameKind : nameKinds)
        isWanted[static_cast<std::size_t>(nameKind)] = true;
    std::array<std::vector<NameIndex::Entry>, kNameKindCount> entries;
    for (const ObjectRecord& record : table.GetRecords()) {
        const auto nameKind = static_cast<std::size_t>(NameKindOf(record.id.classCode));
        if (isWanted[nameKind])
            entries[nameKind].push_back({record.name, ScopeOf(record), record.id});
    }
    for (std::size_t nameKind = 0; nameKind < kNameKindCount; ++nameKind)
        mIndexes[nameKind] = NameIndex(entries[nameKind]);
}

amd_id NameLookup::FindExact(ENameKind nameKind, const amd_id& scope, std::string_view name) const
{
    return IndexOf(nameKind).Find(scope, name);
}

amd_id NameLookup::FindNamespace(std::string_view name) const
{
    for (const NameIndex::Entry& entry : IndexOf(ENameKind::Container).FindFolded(name)) {
        if (entry.id.classCode == IdClassNamespace && entry.name == name)
            return entry.id;
    }
    return {};
}

std::vector<amd_id> NameLookup::Match(ENameKind nameKind, const QualifiedName& name) const
{
    std::vector<amd_id> found = Match(nameKind, name, ECase::Exact);
    ECase letterCase = ECase::Exact;
    if (found.empty()) {
        found = Match(nameKind, name, ECase::Folded);
        letterCase = ECase::Folded;
    }
    if (found.size() < 2)
        return found;
    std::vector<amd_id> complete;
    std::copy_if(found.begin(), found.end(), std::back_inserter(complete), [&](const amd_id& id) {
        return SameNames(GetQualifiedName(id), name, letterCase);
    });
    return complete.empty() ? found : complete;
}

std::vector<amd_id> NameLookup::Match(ENameKind nameKind, const QualifiedName& name,
                                      ECase letterCase) const
{
    if (name.empty())
        return {};
    if (nameKind == ENameKind::Item && name.size() > 1)
        return MatchItems(name, letterCase);
    std::vector<amd_id> found;
    for (const NameIndex::Entry& entry : IndexOf(nameKind).FindFolded(name.back())) {
        if ((letterCase == ECase::Folded || entry.name == name.back()) &&
            ParentsMatch(entry.id, name, letterCase))
            found.push_back(entry.id);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<amd_id> NameLookup::MatchItems(const QualifiedName& name, ECase letterCase) const
{
    std::vector<amd_id> found;
    const QualifiedName subjectName(name.begin(), name.end() - 1);
    for (const amd_id& subject : Match(ENameKind::Subject, subjectName, letterCase)) {
        const amd_id target = mTable->GetTarget(subject);
        for (const NameIndex::Entry& entry :
             IndexOf(ENameKind::Item).FindFolded(target, name.back())) {
            if (letterCase == ECase::Folded || entry.name == name.back())
                found.push_back(entry.id);
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

bool NameLookup::ParentsMatch(const amd_id& id, const QualifiedName& name, ECase letterCase) const
{
    std::size_t open = name.size() - 1;
    const ObjectRecord* object = mTable->Find(id);
    for (std::size_t depth = 0; open > 0 && object != nullptr && depth <= kMaximumChain; ++depth) {
        object = mTable->Find(object->parent);
        if (object == nullptr)
            break;
        const std::string& wanted = name[open - 1];
        if (SameName(object->name, wanted, letterCase))
            --open;
    }
    return open == 0;
}

std::vector<std::string> NameLookup::Suggest(ENameKind nameKind, const QualifiedName& name) const
{
    std::vector<std::string_view> names;
    if (name.size() <= 1) {
        IndexOf(nameKind).CollectNames(names);
        return NearestNames(name.empty() ? "" : name.back(), names);
    }
    std::vector<std::string> qualified;
    for (const ObjectRecord& record : mTable->GetRecords()) {
        if (NameKindOf(record.id.classCode) == nameKind)
            qualified.push_back(ToText(GetQualifiedName(record.id)));
    }
    names.assign(qualified.begin(), qualified.end());
    return NearestNames(ToText(name), names);
}

QualifiedName NameLookup::GetQualifiedName(const amd_id& id) const
{
    QualifiedName name;
    const ObjectRecord* object = mTable->Find(id);
    for (std::size_t depth = 0; object != nullptr && depth <= kMaximumChain; ++depth) {
        name.push_back(object->name);
        const bool bySpace =
            !IsContainerClass(object->id.classCode) && object->id.classCode != IdClassQueryItem;
        // Namespaces are unique in the whole model: their parents need not be named.
        if (object->id.classCode == IdClassNamespace)
            break;
        object = mTable->Find(bySpace ? object->space : object->parent);
    }
    std::reverse(name.begin(), name.end());
    return name;
}

} // namespace qe::model
