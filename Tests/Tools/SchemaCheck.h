#ifndef TESTS_TOOLS_SCHEMACHECK_H
#define TESTS_TOOLS_SCHEMACHECK_H

#include "Tests/Engine/Services/TemporaryFile.h"

#include <optional>
#include <string>
#include <vector>

namespace qe::test {

/// Compares texts with the published schema of model files.
class SchemaCheck
{
public:
    SchemaCheck();

    /// Adds a document; the answer calls it "0", "1" and so on.
    void Add(const std::string& text);

    /// Gives the documents that the schema refuses, each with the reason; nothing where this
    /// machine has no validator.
    [[nodiscard]] std::optional<std::vector<std::string>> FindRefused() const;

private:
    TemporaryFile mFolder;
    int mCount = 0;
};

} // namespace qe::test

#endif
