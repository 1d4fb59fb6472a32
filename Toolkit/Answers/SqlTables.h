#ifndef TOOLKIT_ANSWERS_SQLTABLES_H
#define TOOLKIT_ANSWERS_SQLTABLES_H

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/JoinPlan.h"
#include "amd_id.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

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

/// One appearance of a table in a statement.
struct SqlTable
{
    /// The table's name, quoted.
    std::string source{};
    /// The quoted name by which columns refer to it.
    std::string alias{};
};

/// The tables of a path as a statement names them.
class SqlTables
{
public:
    /// Refers to the path.
    SqlTables(const model::Model& model, const PathTables& path);

    [[nodiscard]] const SqlTable& Get(std::size_t index) const { return mTables[index]; }
    /// Returns the index of the subject's table. The subject is one of the path.
    [[nodiscard]] std::size_t IndexOf(const amd_id& subject) const
    {
        return mPath.IndexOf(subject);
    }
    [[nodiscard]] bool Has(const amd_id& subject) const { return mPath.Has(subject); }

private:
    const PathTables& mPath;
    std::vector<SqlTable> mTables;
};

} // namespace qe::tool

#endif
