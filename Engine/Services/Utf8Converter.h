#ifndef ENGINE_SERVICES_UTF8CONVERTER_H
#define ENGINE_SERVICES_UTF8CONVERTER_H

#include "I18NConverter.h"

namespace qe {

/// Copies well-formed UTF-8 and mends the rest.
class Utf8Converter final : public I18NConverter
{
public:
    [[nodiscard]] I18NString Convert(const char* text) const override;
};

} // namespace qe

#endif
