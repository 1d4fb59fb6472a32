#ifndef TOOLKIT_TEXT_UTF16_H
#define TOOLKIT_TEXT_UTF16_H

#include <string>
#include <string_view>

namespace qe::tool {

/// Appends a character as UTF-8.
void AppendUtf8(std::string& text, char32_t code);

/// Returns the text as UTF-16. What is not well-formed becomes U+FFFD.
[[nodiscard]] std::u16string ToUtf16(std::string_view text);

/// Returns the text as UTF-8. What is not well-formed becomes U+FFFD.
[[nodiscard]] std::string FromUtf16(std::u16string_view text);

} // namespace qe::tool

#endif
