#ifndef SOURCE_JOINS_JOINSTORE_H
#define SOURCE_JOINS_JOINSTORE_H

#include "AQE_I_Refiner.h"
#include "Rules/Cardinality.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

namespace qe {

/// The joins of a join cache, by the ids under which they are stored. Entries are added and
/// replaced, never dropped.
///
/// Joins that come in ascending order of their ids, as those of a model mostly do, are packed: a
/// record is appended and its texts go to memory that is freed as a whole.
class JoinStore
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    /// Returns the ends and the weight of the join that is stored under the id, or nothing.
    [[nodiscard]] std::optional<WeighedJoin> Find(const amd_id& id) const;

    /// Replaces `info` by the join that is stored under the id; false, and `info` as it was, when
    /// there is none.
    [[nodiscard]] bool Copy(const amd_id& id, QEjoinInfo& info) const;

    /// Makes room for the first joins, when their number is known.
    void Reserve(std::size_t count);

    /// Stores a copy of the join under the id, in place of what was there. When memory runs out
    /// everything is as before.
    void Keep(const amd_id& id, const QEjoinInfo& info);

    /// Returns how often a join was replaced by another.
    [[nodiscard]] std::uint64_t GetReplacedCount() const { return mReplacedCount; }

private:
    struct PackedJoin
    {
        amd_id id;
        amd_id joinId;
        WeighedJoin join;
        CardinalityRange leftCardinality;
        CardinalityRange rightCardinality;
        std::string_view name;
        std::string_view expression;
    };

    [[nodiscard]] const PackedJoin* FindPacked(const amd_id& id) const;
    [[nodiscard]] const QEjoinInfo* FindOther(const amd_id& id) const;
    void Pack(const amd_id& id, const QEjoinInfo& info);

    std::pmr::monotonic_buffer_resource mTexts;
    /// In the order of their ids.
    std::vector<PackedJoin> mPacked;
    /// What came out of order, and what replaces a packed join.
    std::map<amd_id, QEjoinInfo> mOthers;
    std::uint64_t mReplacedCount = 0;
};

} // namespace qe

#endif
