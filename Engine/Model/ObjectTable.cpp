#include "Engine/Model/ObjectTable.h"

#include <algorithm>
#include <utility>

namespace qe::model {

ObjectTable::ObjectTable(std::vector<ObjectRecord> records) : mRecords(std::move(records))
{
    std::sort(
        mRecords.begin(), mRecords.end(),
        [](const ObjectRecord& left, const ObjectRecord& right) { return left.id < right.id; });
}

const ObjectRecord* ObjectTable::Find(const amd_id& id) const
{
    const auto found = std::lower_bound(
        mRecords.begin(), mRecords.end(), id,
        [](const ObjectRecord& record, const amd_id& wanted) { return record.id < wanted; });
    return found != mRecords.end() && found->id == id ? &*found : nullptr;
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
