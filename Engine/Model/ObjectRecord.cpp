#include "Engine/Model/ObjectRecord.h"

#include <algorithm>
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
    mIds.reserve(mRecords.size());
    for (const ObjectRecord& record : mRecords)
        mIds.push_back(record.id);
}

const ObjectRecord* ObjectTable::Find(const amd_id& id) const
{
    const auto found = std::lower_bound(mIds.begin(), mIds.end(), id);
    return found != mIds.end() && *found == id ? &mRecords[static_cast<std::size_t>(
                                                     found - mIds.begin())]
                                               : nullptr;
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
