#ifndef TOOLKIT_SQL_SQLNAMES_H
#define TOOLKIT_SQL_SQLNAMES_H

#include "Toolkit/Sql/SqlDialect.h"
#include "amd_id.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace qe::tool {

using NameSet = std::set<std::string, std::less<>>;

/// How the names of tables and columns were written where a model came from.
struct WrittenNames
{
    /// Null where nothing is known of it.
    const SqlDialect* dialect = nullptr;
    /// Of the query subjects that have any: the parts of the table's name, and the items, that
    /// stood between quotes.
    std::map<amd_id, NameSet> quoted{};

    /// Returns whether the name, which belongs to the subject, stood between quotes.
    [[nodiscard]] bool IsQuoted(const amd_id& subject, std::string_view name) const;
};

/// How a name was written.
enum class EWritten : std::uint8_t
{
    Plain,
    Quoted,
};

/// Returns the name between the quotes of the dialect: whatever it holds, it stays one identifier.
/// Throws InputError for names that no identifier can hold: the empty one, those with a zero in
/// them, and those with a quote where the dialect cannot have it.
[[nodiscard]] std::string QuoteIdentifier(std::string_view name,
                                          const SqlDialect& dialect = GetUsualSqlDialect());

/// Writes names of a model in a dialect, with quotes where they are needed. A name that was written
/// without quotes is meant as each dialect folds it, one with quotes letter by letter.
class NameWriter
{
public:
    /// Refers to both arguments.
    NameWriter(const SqlDialect& dialect, const WrittenNames& written)
        : mDialect(&dialect), mWritten(&written)
    {}

    [[nodiscard]] const SqlDialect& GetDialect() const { return *mDialect; }
    /// Returns whether the model comes from elsewhere than the dialect.
    [[nodiscard]] bool IsForeign() const { return mWritten->dialect != mDialect; }
    /// Returns a part of the name of the subject's table, or a column of it. Throws InputError for
    /// names that the dialect cannot have.
    [[nodiscard]] std::string Write(const amd_id& subject, std::string_view name) const;
    /// Returns a name that the statement gives.
    [[nodiscard]] std::string WriteAlias(std::string_view alias) const;

private:
    [[nodiscard]] EWritten FindWriting(const amd_id& subject, std::string_view name) const;
    [[nodiscard]] bool NeedsQuotes(std::string_view name) const;
    void CheckLength(std::string_view name) const;

    const SqlDialect* mDialect;
    const WrittenNames* mWritten;
};

/// Hands out names that tell tables apart in one statement: no two are equal, letter case aside,
/// and none is longer than the dialect keeps.
class AliasNames
{
public:
    explicit AliasNames(const SqlDialect& dialect = GetUsualSqlDialect()) : mDialect(&dialect) {}

    /// Returns the wanted name, shortened or with a number behind it where it must be.
    [[nodiscard]] std::string Take(std::string_view wanted);

private:
    const SqlDialect* mDialect;
    std::set<std::string> mTaken;
};

} // namespace qe::tool

#endif
