#ifndef PLATFORM_QERES_H
#define PLATFORM_QERES_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

/// The numbered texts of the query engine.
class QEENGINE_EXPORT QERes
{
public:
    /// Returns the text with that number, which lives as long as the process; a number without
    /// text gives the empty string.
    [[nodiscard]] static const I18NString& getString(long number);
};

#endif
