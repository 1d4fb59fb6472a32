#ifndef TOOLKIT_TEXT_PLAINJSON_H
#define TOOLKIT_TEXT_PLAINJSON_H

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace qe::tool {

/// Returns the JSON document that the text is, in a fraction of the time that the general parser
/// takes; nothing when only that one can read it or tell what is wrong: for a byte order mark,
/// mistakes, and keys that one object has twice. Throws an InputError when it is nested too deep.
[[nodiscard]] std::optional<nlohmann::json> ReadPlainJson(std::string_view text,
                                                          const std::string& documentName);

} // namespace qe::tool

#endif
