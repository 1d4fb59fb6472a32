#ifndef TOOLKIT_IMPORT_LIVE_ODBCTEXT_H
#define TOOLKIT_IMPORT_LIVE_ODBCTEXT_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

/// What a connection through ODBC is opened with begins so.
inline constexpr std::string_view kOdbcScheme = "odbc:";

/// Returns the attributes of "odbc:Driver=SQLite3;Database={a;b}", each with its value as it is
/// written. Throws an InputError when the text has no such form, or when it holds a password.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> ParseOdbcUrl(std::string_view url);

/// Returns the URL with what tells which database it is, and nothing else.
[[nodiscard]] std::string ToShownOdbcUrl(std::string_view url);

} // namespace qe::tool

#endif
