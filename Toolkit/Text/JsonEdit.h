#ifndef TOOLKIT_TEXT_JSONEDIT_H
#define TOOLKIT_TEXT_JSONEDIT_H

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace qe::tool {

/// Changes to the text of a JSON object that leave every other byte as it is. The text is valid; no
/// key stands in it twice. What is new has the line breaks of the text.

/// Returns the text with one more element in the list of that key; the list is added at the end
/// where there is none.
[[nodiscard]] std::string AppendElement(std::string_view text, std::string_view key,
                                        const nlohmann::ordered_json& element);

/// Returns the text with the element at that position of the key's list replaced. There must be
/// such an element.
[[nodiscard]] std::string ReplaceElement(std::string_view text, std::string_view key,
                                         std::size_t position,
                                         const nlohmann::ordered_json& element);

} // namespace qe::tool

#endif
