#ifndef TOOLKIT_HISTORY_STATEMENTSPLITTER_H
#define TOOLKIT_HISTORY_STATEMENTSPLITTER_H

#include <cstddef>
#include <string_view>

namespace qe::tool {

/// One statement of a text.
struct SqlStatement
{
    /// Without the semicolon.
    std::string_view text{};
    /// The line, from 1, on which it begins.
    std::size_t line = 1;
};

/// Takes the statements of a text apart at their semicolons, but for those within quotes, dollar
/// quotes and comments. What is never closed reaches to the end of the text.
class StatementSplitter
{
public:
    /// Refers to the text.
    explicit StatementSplitter(std::string_view text) : mText(text) {}

    /// Replaces `statement` by the next one that is not empty; false at the end.
    [[nodiscard]] bool Next(SqlStatement& statement);

private:
    /// Returns the position behind the quoted text, comment or single character at `position`.
    [[nodiscard]] std::size_t Skip(std::size_t position) const;
    [[nodiscard]] std::size_t SkipBlockComment(std::size_t position) const;
    [[nodiscard]] std::size_t SkipDollarQuote(std::size_t position) const;
    [[nodiscard]] std::size_t FindBehind(std::string_view wanted, std::size_t position) const;
    /// Moves past blanks and comments.
    void SkipBlanks();
    void MoveTo(std::size_t position);

    std::string_view mText;
    std::size_t mPosition = 0;
    std::size_t mLine = 1;
};

} // namespace qe::tool

#endif
