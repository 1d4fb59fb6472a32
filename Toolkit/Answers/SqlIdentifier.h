#ifndef TOOLKIT_ANSWERS_SQLIDENTIFIER_H
#define TOOLKIT_ANSWERS_SQLIDENTIFIER_H

#include <set>
#include <string>
#include <string_view>

namespace qe::tool {

/// Returns the name quoted for SQL: whatever it holds, it stays one identifier. Throws InputError
/// for names that no SQL identifier can hold: the empty one, and those with a zero in them.
[[nodiscard]] std::string QuoteIdentifier(std::string_view name);

/// Returns the parts of a table's name, "schema.table", as qualified names are written.
[[nodiscard]] std::string QuoteTableName(std::string_view source);

/// Hands out names that tell tables apart in one statement: no two are equal, letter case aside,
/// and none is longer than databases keep.
class AliasNames
{
public:
    /// Returns the wanted name, shortened or with a number behind it where it must be.
    [[nodiscard]] std::string Take(std::string_view wanted);

private:
    std::set<std::string> mTaken;
};

} // namespace qe::tool

#endif
