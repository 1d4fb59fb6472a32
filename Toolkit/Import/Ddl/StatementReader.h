#ifndef TOOLKIT_IMPORT_DDL_STATEMENTREADER_H
#define TOOLKIT_IMPORT_DDL_STATEMENTREADER_H

#include "Toolkit/Import/Ddl/ClientCommands.h"
#include "Toolkit/Import/Ddl/SqlTokens.h"
#include "Toolkit/Import/Ddl/StatementKind.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A statement of a script, which it refers to.
struct ScriptStatement
{
    EStatementKind kind = EStatementKind::Other;
    /// All of them; only the first ones where the kind says nothing on tables.
    std::vector<SqlToken> tokens{};
    /// Without what ends it.
    std::string_view text{};
    /// The line on which it begins, counted from 1.
    std::size_t line = 1;
};

/// What is told of the line on which a script has no more statements.
inline constexpr const char* kUnended =
    "a quote or comment that begins here does not end; what follows was not read";

/// Splits a script into statements, and passes over what its clients would not send to a server:
/// their own commands, and rows. Linear in the size of the script.
class StatementReader
{
public:
    /// Refers to the script.
    StatementReader(std::string_view script, EDialect dialect);

    /// Reads the next statement. Returns false at the end.
    [[nodiscard]] bool Read(ScriptStatement& statement);

    /// Returns how many bytes were read.
    [[nodiscard]] std::size_t GetOffset() const { return mTokenizer.GetOffset(); }
    /// Returns the line on which a quote or comment begins that does not end, and that hides the
    /// rest of the script; 0 when there is none.
    [[nodiscard]] std::size_t GetUnendedLine() const { return mUnendedLine; }

private:
    /// Where the reading of a statement is.
    struct State
    {
        std::size_t depth = 0;
        /// How many blocks of a routine are open.
        std::size_t blocks = 0;
        SqlToken last{};
        bool isClassified = false;
    };

    /// Takes the next token of a statement. Returns false when the statement ends there.
    [[nodiscard]] bool Take(const SqlToken& token, ScriptStatement& statement, State& state);
    void Classify(ScriptStatement& statement, State& state) const;
    /// Returns whether the statement ends before the token, or with it.
    [[nodiscard]] bool EndsAt(const SqlToken& token, const ScriptStatement& statement,
                              const State& state);
    [[nodiscard]] bool BeginsAnother(const SqlToken& token, const ScriptStatement& statement,
                                     const State& state);
    [[nodiscard]] SqlToken Peek();
    void MoveTo(const SqlToken& token) { mTokenizer.MoveTo(OffsetOf(token)); }
    [[nodiscard]] std::size_t OffsetOf(const SqlToken& token) const;
    [[nodiscard]] std::size_t CountLine(std::size_t offset);

    std::string_view mScript;
    EDialect mDialect;
    SqlTokenizer mTokenizer;
    ClientCommands mCommands;
    std::size_t mUnendedLine = 0;
    std::size_t mLine = 1;
    std::size_t mLineOffset = 0;
};

} // namespace qe::tool

#endif
