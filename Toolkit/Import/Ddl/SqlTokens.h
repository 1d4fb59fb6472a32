#ifndef TOOLKIT_IMPORT_DDL_SQLTOKENS_H
#define TOOLKIT_IMPORT_DDL_SQLTOKENS_H

#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Sql/SqlNames.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace qe::tool {

enum class EToken : std::uint8_t
{
    /// Behind the last one.
    End,
    /// A keyword or a name without quotes.
    Word,
    QuotedName,
    /// A text between quotes.
    Text,
    Number,
    Sign,
    /// What ends a statement.
    Terminator,
    /// A quote or comment that does not end; it takes the rest of the script.
    Unended,
};

/// A piece of a script, which it refers to.
struct SqlToken
{
    EToken kind = EToken::End;
    /// As it is written, with its quotes.
    std::string_view text{};

    /// Returns whether it is the keyword, which is given in lower case.
    [[nodiscard]] bool IsWord(std::string_view word) const;
    [[nodiscard]] bool IsSign(char sign) const
    {
        return kind == EToken::Sign && text.front() == sign;
    }
};

/// Returns the name that a token writes: quotes are taken off; a name without quotes is folded as
/// the dialect does.
[[nodiscard]] std::string ToName(const SqlToken& token, EDialect dialect);

/// Returns what stands between the quotes of a text.
[[nodiscard]] std::string ToContent(const SqlToken& text);

/// Returns the names that the tokens write between quotes.
[[nodiscard]] NameSet ListQuotedNames(std::span<const SqlToken> tokens, EDialect dialect);

struct LexicalRules;

/// Takes a script apart, as its dialect quotes and comments. Linear in the size of the script.
class SqlTokenizer
{
public:
    /// Refers to the script.
    SqlTokenizer(std::string_view script, EDialect dialect);

    /// Returns the next token and goes on behind it.
    [[nodiscard]] SqlToken Next();

    [[nodiscard]] std::size_t GetOffset() const { return mOffset; }
    /// Goes on at another place, outside of quotes and comments.
    void MoveTo(std::size_t offset) { mOffset = offset; }
    /// Lets statements end in another text than ";".
    void SetTerminator(std::string_view terminator) { mTerminator = terminator; }
    [[nodiscard]] std::string_view GetTerminator() const { return mTerminator; }

private:
    [[nodiscard]] std::string_view Rest() const { return mScript.substr(mOffset); }
    [[nodiscard]] SqlToken Take(EToken kind, std::size_t size);
    /// Returns whether it came to the next token; false at a comment that does not end.
    [[nodiscard]] bool SkipSpace();
    /// Skips one comment, when one comes next. Returns its size; 0 for none, npos for one without
    /// end.
    [[nodiscard]] std::size_t MeasureComment();
    [[nodiscard]] std::size_t MeasureBlockComment() const;
    [[nodiscard]] SqlToken TakeQuoted(EToken kind, char end, std::size_t prefix, bool isEscaping);
    [[nodiscard]] SqlToken TakeWord();
    [[nodiscard]] SqlToken TakeNumber();
    /// Takes q'[...]' or $tag$...$tag$.
    [[nodiscard]] SqlToken TakeAlternative(std::size_t prefix, const std::string& end);
    [[nodiscard]] bool TakesDollarQuote(std::string& end) const;

    std::string_view mScript;
    const LexicalRules* mRules;
    std::size_t mOffset = 0;
    std::string_view mTerminator = ";";
    bool mIsInVersionComment = false;
};

/// Returns the names that a statement writes between quotes.
[[nodiscard]] NameSet ListQuotedNames(std::string_view statement, EDialect dialect);

} // namespace qe::tool

#endif
