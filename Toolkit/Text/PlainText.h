#ifndef TOOLKIT_TEXT_PLAINTEXT_H
#define TOOLKIT_TEXT_PLAINTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qe::tool {

/// Returns the text with `substitute` in place of each piece that ToDisplayText escapes.
[[nodiscard]] std::string ReplaceHarmful(std::string_view text, char substitute);

/// Returns the beginning of a text, of at most so many bytes and whole characters, with an ellipsis
/// behind it; or the text itself where it is no longer.
[[nodiscard]] std::string ShortenText(std::string_view text, std::size_t bytes);

} // namespace qe::tool

#endif
