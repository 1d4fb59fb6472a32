#ifndef ENGINE_MODEL_OBJECTTABLE_H
#define ENGINE_MODEL_OBJECTTABLE_H

#include "Engine/Model/ObjectRecord.h"
#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qe::model {

/// An object has at most this many parents around it, and as many shortcuts before what it stands
/// for.
inline constexpr std::size_t kMaximumChain = 100;

/// The records of a model in ascending order of their ids.
class QEENGINE_EXPORT ObjectTable
{
public:
    ObjectTable() = default;
    /// Takes records in any order; each id occurs once.
    explicit ObjectTable(std::vector<ObjectRecord> records);

    /// Returns the record with that id, or null. Costs a binary search.
    [[nodiscard]] const ObjectRecord* Find(const amd_id& id) const;
    [[nodiscard]] std::span<const ObjectRecord> GetRecords() const { return mRecords; }

    /// Returns the object that `id` finally stands for: follows shortcuts and relationship
    /// shortcuts to their end. Returns the empty id when the chain breaks or is longer
    /// than kMaximumChain.
    [[nodiscard]] amd_id GetTarget(const amd_id& id) const;

private:
    std::vector<ObjectRecord> mRecords;
};

} // namespace qe::model

#endif
