#ifndef PLATFORM_AMDI_RELATIONSHIP_H
#define PLATFORM_AMDI_RELATIONSHIP_H

#include "BMT_I_Association.h"
#include "amdi_object.h"

/// A model join between two ends, each a query subject or a shortcut (classes 102 and 136).
class QEENGINE_EXPORT amdi_relationship : public amdi_object
{
public:
    ~amdi_relationship() override;

    using CardinalityRange = BMT_I_Association::CardinalityRange;

    /// Returns the second end.
    [[nodiscard]] virtual amd_id GetRightId() const = 0;
    /// Returns the first end.
    [[nodiscard]] virtual amd_id GetLeftId() const = 0;
    /// Returns the cardinality at the first end. Relationships of class 136 have numbers of their
    /// own enumeration.
    [[nodiscard]] virtual CardinalityRange GetLeftCardinality() const = 0;
    /// Returns the cardinality at the second end.
    [[nodiscard]] virtual CardinalityRange GetRightCardinality() const = 0;
    /// Returns the join condition, owned by the object.
    [[nodiscard]] virtual const char* GetExpressionText() const = 0;
};

#endif
