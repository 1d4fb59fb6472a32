#ifndef TOOLKIT_BATCH_QUESTIONREADER_H
#define TOOLKIT_BATCH_QUESTIONREADER_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json.hpp>
#include <string_view>

namespace qe::tool {

/// A line of a file of requests.
struct RequestDocument
{
    nlohmann::json json{};
    /// The mistakes that were seen so far. Places are pointers into the request.
    JsonProblems problems{};
};

/// Parses a request. Throws InputError for text that is not JSON.
[[nodiscard]] RequestDocument ParseRequest(std::string_view text);

/// Returns the question of a request; what the request does not say is as in `defaults`. Throws
/// InputError, with all mistakes and their places, for wrong types and values and for unknown keys.
[[nodiscard]] Question ReadQuestion(const RequestDocument& request, const Question& defaults);

/// Returns the defaults of all requests, which are written like a request, with or without
/// subjects. Throws InputError like ParseRequest and ReadQuestion.
[[nodiscard]] Question ReadDefaults(std::string_view text);

} // namespace qe::tool

#endif
