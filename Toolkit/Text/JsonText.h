#ifndef TOOLKIT_TEXT_JSONTEXT_H
#define TOOLKIT_TEXT_JSONTEXT_H

#include "Toolkit/Text/FileProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace qe::tool {

/// Objects and lists may be nested this deep.
inline constexpr std::size_t MaximumDepth = 256;

/// Reads JSON. Raises an InputError with line and column (in characters, from 1) when the text is
/// not JSON in UTF-8, or when it is nested too deep. Keys that one object has twice are added to
/// `problems`; the last one counts.
[[nodiscard]] nlohmann::json ParseJson(std::string_view text, const std::string& fileName,
                                       FileProblems& problems);

} // namespace qe::tool

#endif
