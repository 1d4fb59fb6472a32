#ifndef TOOLKIT_BATCH_QUESTIONREADER_H
#define TOOLKIT_BATCH_QUESTIONREADER_H

#include "Toolkit/Ask/Question.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace qe::tool {

using Json = nlohmann::ordered_json;

/// Reads a question from the JSON object of a request line; what the object does not say is as in
/// `defaults`. Throws InputError, with all mistakes and their places, for wrong types and values
/// and for keys that mean nothing.
[[nodiscard]] Question ReadQuestion(const Json& request, const Question& defaults);

/// Reads the defaults of all requests: an object like a request, with or without subjects. Throws
/// InputError like ReadQuestion.
[[nodiscard]] Question ReadDefaults(const std::string& text);

/// Parses one line of JSON. Throws InputError for text that is none.
[[nodiscard]] Json ParseJsonLine(std::string_view text);

} // namespace qe::tool

#endif
