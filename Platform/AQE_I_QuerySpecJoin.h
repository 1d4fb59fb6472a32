#ifndef PLATFORM_AQE_I_QUERYSPECJOIN_H
#define PLATFORM_AQE_I_QUERYSPECJOIN_H

#include "amdi_object.h"

#include <cstdint>

/// A join that the query itself defines (class 300005).
class QEENGINE_EXPORT AQE_I_QuerySpecJoin : public amdi_object
{
public:
    ~AQE_I_QuerySpecJoin() override;

    /// One bound of a cardinality, in the numbers that queries are written with.
    enum ECardinality : std::int32_t
    {
        QuerySpecCardinalityUnknown = 0,
        QuerySpecCardinalityZero = 1,
        QuerySpecCardinalityOne = 2,
        QuerySpecCardinalityMany = 3,
    };

    struct CardinalityRange
    {
        ECardinality minimum = QuerySpecCardinalityUnknown;
        ECardinality maximum = QuerySpecCardinalityUnknown;
    };

    /// Returns the join condition, owned by the object.
    [[nodiscard]] virtual const char* GetExpressionText() const = 0;
    /// Returns the first end.
    [[nodiscard]] virtual amd_id GetLeftId() const = 0;
    /// Returns the second end.
    [[nodiscard]] virtual amd_id GetRightId() const = 0;
    /// Returns the cardinality at the first end.
    [[nodiscard]] virtual CardinalityRange GetLeftCardinality() const = 0;
    /// Returns the cardinality at the second end.
    [[nodiscard]] virtual CardinalityRange GetRightCardinality() const = 0;
};

#endif
