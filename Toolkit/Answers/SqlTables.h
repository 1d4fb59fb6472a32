#ifndef TOOLKIT_ANSWERS_SQLTABLES_H
#define TOOLKIT_ANSWERS_SQLTABLES_H

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <cstddef>
#include <map>
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

/// The tables of a statement: one for each query subject or shortcut that it touches, but one for
/// all that the path takes for the same, by the joins between shortcuts and what they stand for.
class SqlTables
{
public:
    /// Assigns tables to the subjects of the question, in their order, then to the other ends of
    /// the joins of the path.
    SqlTables(const model::Model& model, const Answer& answer, const std::vector<amd_id>& path);

    [[nodiscard]] std::size_t GetCount() const { return mTables.size(); }
    [[nodiscard]] const SqlTable& Get(std::size_t index) const { return mTables[index]; }
    /// Returns the index of the subject's table. The subject is one that the constructor saw.
    [[nodiscard]] std::size_t IndexOf(const amd_id& subject) const { return mIndexes.at(subject); }
    [[nodiscard]] bool Has(const amd_id& subject) const { return mIndexes.count(subject) != 0; }

private:
    std::vector<SqlTable> mTables;
    std::map<amd_id, std::size_t> mIndexes;
};

} // namespace qe::tool

#endif
