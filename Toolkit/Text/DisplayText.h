#ifndef TOOLKIT_TEXT_DISPLAYTEXT_H
#define TOOLKIT_TEXT_DISPLAYTEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Makes any text harmless to show on one line of a terminal: control characters, characters that
/// change the direction of writing or break lines, and bytes that are no UTF-8 become escapes such
/// as "\n", "\u{202E}" and "\xFF". All other text stays as it is.
[[nodiscard]] std::string ToDisplayText(std::string_view text);

/// Makes texts harmless and puts commas between them; "none" stands for an empty list.
[[nodiscard]] std::string ToDisplayList(const std::vector<std::string>& texts);

/// Returns the number of columns that a text from ToDisplayText takes: two for a wide letter, none
/// for a mark on the letter before it.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

} // namespace qe::tool

#endif
