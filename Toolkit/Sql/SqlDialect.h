#ifndef TOOLKIT_SQL_SQLDIALECT_H
#define TOOLKIT_SQL_SQLDIALECT_H

#include "Toolkit/Sql/Calls.h"
#include "Toolkit/Sql/SqlTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What becomes of the letters A to Z of a name without quotes.
enum class EFolding : std::uint8_t
{
    /// They stay, and mostly do not count.
    AsWritten,
    Lower,
    Upper,
};

/// How long a name may be; 0 for any length.
struct NameLimit
{
    enum class EUnit : std::uint8_t
    {
        Bytes,
        Characters,
    };

    std::size_t size = 0;
    EUnit unit = EUnit::Bytes;
};

/// How a dialect writes names.
struct NameForms
{
    enum class EQuotes : std::uint8_t
    {
        Always,
        WhereNeeded,
    };

    enum class EInnerQuote : std::uint8_t
    {
        Doubled,
        /// No name can hold the quote.
        None,
    };

    char openingQuote = '"';
    char closingQuote = '"';
    EQuotes quotes = EQuotes::WhereNeeded;
    EInnerQuote innerQuote = EInnerQuote::Doubled;
    EFolding folding = EFolding::AsWritten;
    /// Whether a name without quotes may begin with "_".
    bool mayBeginWithUnderscore = true;
    /// In lower case, each with a blank before and behind it.
    std::string_view reservedWords{};
    NameLimit names{};
    NameLimit aliases{};
    /// What stands between a table and its alias.
    std::string_view tableAlias = " AS ";
};

/// How a dialect writes what conditions are made of. In texts, "$1" and "$2" stand for operands.
struct ConditionForms
{
    enum class EBooleans : std::uint8_t
    {
        /// Conditions are values, and TRUE and FALSE are words for them.
        Values,
        /// A condition is no value; 1 and 0 stand for TRUE and FALSE.
        Numbers,
    };

    enum class EConcatenation : std::uint8_t
    {
        Bars,
        /// CONCAT, which is null when an operand is.
        Function,
        /// "+", between texts only.
        Plus,
    };

    EBooleans booleans = EBooleans::Values;
    EConcatenation concatenation = EConcatenation::Bars;
    /// Two values are equal or both null.
    std::string_view isSame = "$1 IS NOT DISTINCT FROM $2";
    std::string_view isNotSame = "$1 IS DISTINCT FROM $2";
    /// Letters that stand for themselves in a text when another "\" stands before them.
    std::string_view escapedLetters{};
    /// What stands before a text that holds letters beyond ASCII.
    std::string_view nationalPrefix{};
    CallForms calls{};
    TypeForms types{};
};

/// A dialect of SQL, as a value: what it is called and how it differs from others.
struct SqlDialect
{
    /// By which users choose it.
    std::string_view word{};
    /// What people call it.
    std::string_view name{};
    NameForms names{};
    ConditionForms conditions{};
};

/// Returns all dialects that SQL can be written in. They live forever; a further one is an entry of
/// the list.
[[nodiscard]] std::span<const SqlDialect> GetSqlDialects();

/// Returns the dialect of the word, or null.
[[nodiscard]] const SqlDialect* FindSqlDialect(std::string_view word);

/// Returns the words of all dialects, in their order.
[[nodiscard]] std::vector<std::string_view> ListSqlDialectWords();

/// Returns what SQLite and PostgreSQL both read, with quotes around all names: the dialect of what
/// nothing is known of. Users do not choose it.
[[nodiscard]] const SqlDialect& GetUsualSqlDialect();

/// Returns a name without quotes as the dialect understands it.
[[nodiscard]] std::string FoldName(std::string name, EFolding folding);

} // namespace qe::tool

#endif
