#ifndef TOOLKIT_TEXT_MARKUP_H
#define TOOLKIT_TEXT_MARKUP_H

#include <string>

namespace qe::tool {

/// Returns the text with what XML and HTML read as markup escaped. Control characters and marks of
/// direction become visible escapes.
[[nodiscard]] std::string EscapeMarkup(const std::string& text);

} // namespace qe::tool

#endif
