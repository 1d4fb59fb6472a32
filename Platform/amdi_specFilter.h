#ifndef PLATFORM_AMDI_SPECFILTER_H
#define PLATFORM_AMDI_SPECFILTER_H

#include "amdi_object.h"

/// A filter that the query itself defines (class 300020).
class QEENGINE_EXPORT amdi_specFilter : public amdi_object
{
public:
    ~amdi_specFilter() override;

    /// Returns the condition, owned by the object.
    [[nodiscard]] virtual const char* GetExpressionText() const = 0;
};

#endif
