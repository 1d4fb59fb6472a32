#include "Engine/Model/ObjectRecord.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace qe::model {

std::string_view ClassTitle(std::int32_t classCode)
{
    switch (classCode) {
    case IdClassFolder:
        return "folder";
    case IdClassNamespace:
        return "namespace";
    case IdClassQuerySubject:
        return "query subject";
    case IdClassQueryItem:
        return "item";
    case IdClassRelationship:
    case IdClassRelationship136:
        return "relationship";
    case IdClassShortcut:
        return "shortcut";
    case IdClassRelationshipShortcut:
        return "relationship shortcut";
    case IdClassFilter:
        return "filter";
    case IdClassSpecJoin:
        return "join of the query";
    case IdClassSpecFilter:
        return "filter of the query";
    default:
        return "object";
    }
}

ObjectTable::ObjectTable(std::vector<ObjectRecord> records) : mRecords(std::move(records))
{
    const auto isBefore = [](const ObjectRecord& left, const ObjectRecord& right) {
        return left.id < right.id;
    };
    if (!std::is_sorted(mRecords.begin(), mRecords.end(), isBefore))
        std::sort(mRecords.begin(), mRecords.end(), isBefore);
    for (std::size_t i = 0; i < mRecords.size(); ++i) {
        const amd_id& id = mRecords[i].id;
        if (mRuns.empty() || FindInRun(mRuns.back(), id) != mRuns.back().count)
            mRuns.push_back({id, i, 0});
        ++mRuns.back().count;
    }
}

std::size_t ObjectTable::FindInRun(const Run& run, const amd_id& id)
{
    constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
    if (id.domain != run.first.domain || id.classCode != run.first.classCode)
        return kNowhere;
    // Numbers may lie further apart than their own type can tell.
    return static_cast<std::size_t>(std::int64_t{id.number} - run.first.number);
}

const ObjectRecord* ObjectTable::Find(const amd_id& id) const
{
    const auto behind = std::partition_point(mRuns.begin(), mRuns.end(),
                                             [&id](const Run& run) { return !(id < run.first); });
    if (behind == mRuns.begin())
        return nullptr;
    const Run& run = *std::prev(behind);
    const std::size_t offset = FindInRun(run, id);
    return offset < run.count ? &mRecords[run.position + offset] : nullptr;
}

amd_id ObjectTable::GetTarget(const amd_id& id) const
{
    const ObjectRecord* record = Find(id);
    for (std::size_t steps = 0; record != nullptr && steps <= kMaximumChain; ++steps) {
        if (record->id.classCode != IdClassShortcut &&
            record->id.classCode != IdClassRelationshipShortcut)
            return record->id;
        record = Find(record->referenced);
    }
    return {};
}

} // namespace qe::model
