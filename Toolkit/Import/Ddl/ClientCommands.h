#ifndef TOOLKIT_IMPORT_DDL_CLIENTCOMMANDS_H
#define TOOLKIT_IMPORT_DDL_CLIENTCOMMANDS_H

#include "Toolkit/Import/Ddl/SqlTokens.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace qe::tool {

/// What stands in a script for the client that sends it to a server, line by line.
class ClientCommands
{
public:
    /// Refers to both arguments.
    ClientCommands(std::string_view script, EDialect dialect, SqlTokenizer& tokenizer)
        : mScript(script), mDialect(dialect), mTokenizer(&tokenizer)
    {}

    /// Skips the commands and ends of statements that come next.
    void Skip();
    /// Returns whether the token within a statement is a command, which ends the statement.
    [[nodiscard]] bool IsCommand(const SqlToken& token) const;
    /// Returns whether the token is a line of its own that ends a batch.
    [[nodiscard]] bool EndsBatch(const SqlToken& token) const;
    /// Returns whether the token is the first one on its line.
    [[nodiscard]] bool BeginsLine(const SqlToken& token) const;
    /// Skips the rest of a routine whose end such a line tells. Returns false when routines of the
    /// dialect end otherwise.
    [[nodiscard]] bool SkipRoutine();
    /// Skips the rows that follow a statement which copies them, when they do.
    void SkipRows(std::span<const SqlToken> statement);

private:
    /// Skips the command that begins with the token. Returns false when it is none.
    [[nodiscard]] bool SkipCommand(const SqlToken& token);
    [[nodiscard]] bool IsSqlPlusCommand(const SqlToken& token) const;
    void SetTerminator();
    /// Returns the rest of the line behind the token.
    [[nodiscard]] std::string_view LineBehind(std::size_t offset) const;
    /// Goes on behind the line; a line that ends in `continuation` goes on in the next one.
    void SkipLine(char continuation = '\n');
    [[nodiscard]] std::size_t OffsetOf(const SqlToken& token) const
    {
        return static_cast<std::size_t>(token.text.data() - mScript.data());
    }

    std::string_view mScript;
    EDialect mDialect;
    SqlTokenizer* mTokenizer;
};

} // namespace qe::tool

#endif
