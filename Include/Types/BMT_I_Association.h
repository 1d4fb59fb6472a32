#ifndef INCLUDE_TYPES_BMT_I_ASSOCIATION_H
#define INCLUDE_TYPES_BMT_I_ASSOCIATION_H

#include <cstdint>

/// The vocabulary of joins between two ends.
class BMT_I_Association
{
public:
    /// How many rows of an end can meet one row of the other end: one bound of the range.
    enum ECardinality : std::int32_t
    {
        /// Not given; also what every failed conversion yields.
        CardinalityUnknown = 0,
        CardinalityZero = 10,
        CardinalityOne = 11,
        CardinalityMany = 12,
    };

    /// The range at one end of a join. Values outside ECardinality are carried as they are.
    struct CardinalityRange
    {
        std::int32_t minimum = CardinalityUnknown;
        std::int32_t maximum = CardinalityUnknown;

        friend bool operator==(const CardinalityRange&, const CardinalityRange&) = default;
    };
};

#endif
