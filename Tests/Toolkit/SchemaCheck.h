#ifndef TESTS_TOOLKIT_SCHEMACHECK_H
#define TESTS_TOOLKIT_SCHEMACHECK_H

#include <optional>
#include <string>
#include <vector>

namespace qe::test {

/// Compares documents with a published schema, such as "model.schema.json". Returns those that it
/// refuses, by their positions, each with the reason; nothing where this machine has no validator.
[[nodiscard]] std::optional<std::vector<std::string>>
FindRefused(const std::string& schema, const std::vector<std::string>& documents);

} // namespace qe::test

#endif
