#ifndef TOOLKIT_MODEL_CONTENTVALUES_H
#define TOOLKIT_MODEL_CONTENTVALUES_H

#include "Engine/Model/ModelBuilder.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Sql/SqlNames.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"
#include "amd_id.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qe::tool {

/// A reference and where the file has it.
struct PlacedReference
{
    model::Reference reference{};
    std::string pointer{};
};

/// The values of model files that can be written in more than one form. What is missing or wrong is
/// reported.

/// Returns what a key refers to: by name, or by class and id. Empty when it refers to nothing.
[[nodiscard]] model::Reference ReadReference(JsonObject& json, const char* key,
                                             JsonProblems& problems);

/// Returns the references in the list of a key.
[[nodiscard]] std::vector<PlacedReference> ReadReferences(JsonObject& json, const char* key,
                                                          JsonProblems& problems);

/// Returns the cardinality of a key: a word such as "0..n", or a list of two numbers.
[[nodiscard]] model::CardinalityRange ReadCardinality(JsonObject& json, const char* key,
                                                      JsonProblems& problems);

/// Returns an id of that class: a number, or a list of domain and number. Empty when there is none;
/// `json` may be without a value.
[[nodiscard]] amd_id ReadId(const PlacedJson& json, std::int32_t classCode, JsonProblems& problems);

/// Returns an accepted finding: its id and the reason.
[[nodiscard]] AcceptedFinding ReadAcceptedFinding(const PlacedJson& json, JsonProblems& problems);

/// Returns those of the names that a list chooses, or all of them for true. Other names are
/// reported.
[[nodiscard]] NameSet ReadNameSet(const PlacedJson& json, const NameSet& names,
                                  JsonProblems& problems);

} // namespace qe::tool

#endif
