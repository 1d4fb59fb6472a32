#ifndef SOURCE_RULES_PATHMEASURE_H
#define SOURCE_RULES_PATHMEASURE_H

#include "Rules/Cardinality.h"
#include "Rules/FactGraph.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace qe {

/// Keeps the low 32 bits, as a signed number. Weights are summed and scaled without a check for
/// overflow; computing them in 64 bits and cutting the result keeps that defined.
[[nodiscard]] constexpr std::int32_t WrapTo32(std::int64_t value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

[[nodiscard]] constexpr std::int32_t AddWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} + right);
}

[[nodiscard]] constexpr std::int32_t SubtractWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} - right);
}

[[nodiscard]] constexpr std::int32_t MultiplyWrapping(std::int32_t left, std::int32_t right)
{
    return WrapTo32(std::int64_t{left} * right);
}

/// Divides, truncating toward zero. `divisor` must not be 0; the least number divided by -1 gives
/// itself.
[[nodiscard]] constexpr std::int32_t DivideWrapping(std::int32_t dividend, std::int32_t divisor)
{
    return WrapTo32(std::int64_t{dividend} / divisor);
}

/// One join of a path, as it is read.
struct PathJoin
{
    JoinEnds ends;
    CardinalityRange leftCardinality;
    CardinalityRange rightCardinality;
};

/// Who hears why the fact tables of a path cannot be counted.
class MeasureListener
{
public:
    virtual ~MeasureListener() = default;

    /// Receives the reason. What it throws ends the measuring and passes through.
    virtual void ReportUncountable(EFactJoin problem) const = 0;
};

/// One join of a path, as far as paths are measured by it.
struct MeasuredJoin
{
    /// The ends as the fact graph takes them: it takes no many-to-many join, which goes as a
    /// one-to-one join and is counted apart.
    FactJoinEnd left;
    FactJoinEnd right;
    bool isManyToMany = false;
};

/// The joins of a path that can be read, in its order.
using MeasuredJoins = std::span<const MeasuredJoin>;

/// What one path after the other is measured with.
struct MeasureTools
{
    /// Borrowed.
    const MeasureListener& listener;
    /// Gives the query subjects of all paths their numbers.
    FactGraph graph{};
    /// By the number of a query subject; all zero between two paths.
    std::vector<std::int32_t> endCounts{};

    /// Returns the join as paths are measured by it, now and later.
    [[nodiscard]] MeasuredJoin Prepare(const PathJoin& join);
};

/// Where the joins of paths are read from.
class PathJoinSource : public MeasureListener
{
public:
    /// Returns the join, or nothing when it cannot be read; such joins count for nothing.
    [[nodiscard]] virtual std::optional<PathJoin> ReadPathJoin(const amd_id& join) const = 0;
};

/// What paths are compared by.
struct PathMeasure
{
    std::int32_t weight = 0;
    /// The facts among the query subjects of the path, a many-to-many join counting as one-to-one.
    /// Nothing when they were not counted, or facts and dimensions cannot be told apart.
    std::optional<std::int32_t> factTables{};
    std::int32_t manyToManyJoins = 0;
    /// How often the path branches: 0 for a chain.
    std::int32_t branches = 0;
};

/// Sets the fact tables and the many-to-many joins of the path. At the first join from which facts
/// cannot be told apart the listener receives the reason; unless it throws, `factTables` stays
/// empty and the many-to-many joins are counted to the end.
void CountFactTables(MeasuredJoins joins, MeasureTools& tools, PathMeasure& measure);

/// Sets how much the path branches: for every query subject that more than two ends of its joins
/// meet, their number less two. A join of a query subject with itself has two ends there.
void CountBranches(MeasuredJoins joins, MeasureTools& tools, PathMeasure& measure);

/// What a join that cannot be read goes by in the signature of a path.
inline constexpr const char* kUnreadableName = "Dummy";

/// Returns the names of the joins of a path. `lookUpName` returns the name of a join, or nothing
/// when it cannot be read.
template <typename Name, typename LookUpName>
[[nodiscard]] std::set<Name> GetPathSignature(std::span<const amd_id> path,
                                              const LookUpName& lookUpName)
{
    std::set<Name> signature;
    for (const amd_id& join : path) {
        std::optional<Name> name = lookUpName(join);
        signature.insert(name ? std::move(*name) : Name(kUnreadableName));
    }
    return signature;
}

} // namespace qe

#endif
