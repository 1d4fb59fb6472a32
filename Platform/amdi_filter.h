#ifndef PLATFORM_AMDI_FILTER_H
#define PLATFORM_AMDI_FILTER_H

#include "amdi_object.h"

/// A model filter (class 114).
class QEENGINE_EXPORT amdi_filter : public amdi_object
{
public:
    ~amdi_filter() override;

    /// Returns the condition, owned by the object.
    [[nodiscard]] virtual const char* GetExpressionText() const = 0;
};

#endif
