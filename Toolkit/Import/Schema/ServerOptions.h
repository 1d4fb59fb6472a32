#ifndef TOOLKIT_IMPORT_SCHEMA_SERVEROPTIONS_H
#define TOOLKIT_IMPORT_SCHEMA_SERVEROPTIONS_H

#include "Toolkit/Text/InputFile.h"

#include <chrono>
#include <string>
#include <vector>

namespace qe::tool {

/// Which tables of a database on a server are read: those that one of the patterns matches, in
/// schemas that one of the patterns matches. An empty list stands for all. In patterns "*" stands
/// for any letters and "?" for one; the case of A to Z does not count.
struct TablePatterns
{
    std::vector<std::string> schemas{};
    std::vector<std::string> tables{};

    [[nodiscard]] bool IsEmpty() const { return schemas.empty() && tables.empty(); }
};

inline constexpr std::chrono::seconds kConnectTimeLimit{10};
inline constexpr std::chrono::seconds kStatementTimeLimit{60};

/// How long a server is waited for.
struct ServerTimeLimits
{
    std::chrono::seconds connect = kConnectTimeLimit;
    /// For each statement.
    std::chrono::seconds statement = kStatementTimeLimit;
};

/// How a database on a server is read.
struct ServerOptions
{
    TablePatterns patterns{};
    ServerTimeLimits limits{};
};

/// Patterns that match nothing, or that have no use.
class PatternError : public InputError
{
public:
    using InputError::InputError;
};

} // namespace qe::tool

#endif
