#ifndef TOOLKIT_MODEL_CONTENTVALUES_H
#define TOOLKIT_MODEL_CONTENTVALUES_H

#include "Engine/Model/ModelBuilder.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"
#include "amd_id.h"

#include <cstdint>

namespace qe::tool {

/// The values of model files that can be written in more than one form. What is missing or wrong is
/// reported.

/// Returns what a key refers to: by name, or by class and id. Empty when it refers to nothing.
[[nodiscard]] model::Reference ReadReference(JsonObject& json, const char* key,
                                             JsonProblems& problems);

/// Returns the cardinality of a key: a word such as "0..n", or a list of two numbers.
[[nodiscard]] model::CardinalityRange ReadCardinality(JsonObject& json, const char* key,
                                                      JsonProblems& problems);

/// Returns an id of that class: a number, or a list of domain and number. Empty when there is none;
/// `json` may be without a value.
[[nodiscard]] amd_id ReadId(const PlacedJson& json, std::int32_t classCode, JsonProblems& problems);

} // namespace qe::tool

#endif
