#ifndef TOOLKIT_TEXT_TEXTEDGES_H
#define TOOLKIT_TEXT_TEXTEDGES_H

#include "Engine/Services/Characters.h"

#include <string_view>

namespace qe::tool {

/// What some tools put before a text in UTF-8.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Returns the text behind its byte order mark, if it begins with one.
[[nodiscard]] constexpr std::string_view SkipByteOrderMark(std::string_view text)
{
    return text.substr(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
}

/// Returns the text without the white space of ASCII at both its ends.
[[nodiscard]] constexpr std::string_view Trim(std::string_view text)
{
    while (!text.empty() && ascii::IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && ascii::IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace qe::tool

#endif
