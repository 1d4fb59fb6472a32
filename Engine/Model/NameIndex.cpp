#include "Engine/Model/NameIndex.h"

#include "Engine/Model/NearestNames.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace qe::model {

NameIndex::NameIndex(std::vector<Entry> entries) : mEntries(std::move(entries))
{
    for (Entry& entry : mEntries)
        entry.folded = FoldCase(entry.name);
    std::sort(mEntries.begin(), mEntries.end(), [](const Entry& left, const Entry& right) {
        return std::tie(left.folded, left.scope, left.id) <
               std::tie(right.folded, right.scope, right.id);
    });
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
    const std::string folded = FoldCase(name);
    const auto first =
        std::partition_point(mEntries.begin(), mEntries.end(),
                             [&](const Entry& entry) { return entry.folded < folded; });
    const auto last = std::partition_point(
        first, mEntries.end(), [&](const Entry& entry) { return entry.folded == folded; });
    return {first, last};
}

std::span<const NameIndex::Entry> NameIndex::FindFolded(const amd_id& scope,
                                                        std::string_view name) const
{
    const std::span<const Entry> found = FindFolded(name);
    const auto first = std::partition_point(
        found.begin(), found.end(), [&](const Entry& entry) { return entry.scope < scope; });
    const auto last = std::partition_point(
        first, found.end(), [&](const Entry& entry) { return entry.scope == scope; });
    return {first, last};
}

void NameIndex::CollectNames(const amd_id& scope, std::vector<std::string_view>& names) const
{
    for (const Entry& entry : mEntries) {
        if (entry.scope == scope)
            names.push_back(entry.name);
    }
}

void NameIndex::CollectNames(std::vector<std::string_view>& names) const
{
    for (const Entry& entry : mEntries)
        names.push_back(entry.name);
}

} // namespace qe::model
