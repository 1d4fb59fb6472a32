#ifndef SOURCE_RULES_CARDINALITY_H
#define SOURCE_RULES_CARDINALITY_H

#include "BMT_I_Association.h"

namespace qe {

/// What is asked about the cardinality at one end of a join. Two readings of "many" live side by
/// side: facts, and what multiplies rows, look at the maximum alone; main objects look at both
/// bounds.
using CardinalityRange = BMT_I_Association::CardinalityRange;

/// Returns whether one row of the other end may meet many rows of this one.
[[nodiscard]] constexpr bool IsToMany(const CardinalityRange& end)
{
    return end.maximum == BMT_I_Association::CardinalityMany;
}

/// Returns whether rows of both ends may meet many rows of the other.
[[nodiscard]] constexpr bool IsManyToMany(const CardinalityRange& left,
                                          const CardinalityRange& right)
{
    return IsToMany(left) && IsToMany(right);
}

/// Returns whether either bound is "many".
[[nodiscard]] constexpr bool HasManyBound(const CardinalityRange& end)
{
    return end.minimum == BMT_I_Association::CardinalityMany ||
           end.maximum == BMT_I_Association::CardinalityMany;
}

/// Returns whether either bound is zero.
[[nodiscard]] constexpr bool IsOptional(const CardinalityRange& end)
{
    return end.minimum == BMT_I_Association::CardinalityZero ||
           end.maximum == BMT_I_Association::CardinalityZero;
}

/// Returns whether both bounds are one.
[[nodiscard]] constexpr bool IsExactlyOne(const CardinalityRange& end)
{
    return end.minimum == BMT_I_Association::CardinalityOne &&
           end.maximum == BMT_I_Association::CardinalityOne;
}

} // namespace qe

#endif
