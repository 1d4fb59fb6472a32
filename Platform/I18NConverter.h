#ifndef PLATFORM_I18NCONVERTER_H
#define PLATFORM_I18NCONVERTER_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

/// Turns text of one encoding into engine strings.
class QEENGINE_EXPORT I18NConverter
{
public:
    virtual ~I18NConverter();

    /// Converts the zero-terminated `text`. Bytes that do not belong to the encoding become
    /// U+FFFD, one for each maximal ill-formed piece. Null converts to the empty string.
    [[nodiscard]] virtual I18NString Convert(const char* text) const = 0;
};

/// Returns the converter for UTF-8, which lives as long as the process. Any thread may use it.
[[nodiscard]] QEENGINE_EXPORT const I18NConverter& AUT_GetUTF8Converter();

#endif
