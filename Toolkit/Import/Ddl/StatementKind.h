#ifndef TOOLKIT_IMPORT_DDL_STATEMENTKIND_H
#define TOOLKIT_IMPORT_DDL_STATEMENTKIND_H

#include "Toolkit/Import/Ddl/SqlTokens.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qe::tool {

/// What a statement may say on tables and keys.
enum class EStatementKind : std::uint8_t
{
    /// Nothing.
    Other,
    CreateTable,
    AlterTable,
    CreateUniqueIndex,
    DropTable,
    DropIndex,
    RenameTable,
    /// It describes an object.
    Comment,
    CreateSchema,
    /// It sets where names without a schema are looked for.
    ChooseSchema,
    /// It reads rows, which may follow it.
    Copy,
    /// It creates what is made of statements, which say nothing on tables before they run.
    Routine,
};

/// How many tokens at the front of a statement tell its kind.
inline constexpr std::size_t kTokensThatTell = 14;

/// Returns the kind of the statement that begins with these tokens.
[[nodiscard]] EStatementKind ClassifyStatement(std::span<const SqlToken> tokens, EDialect dialect);

/// Returns whether a token outside of parentheses, which stands between these two, begins another
/// statement where statements need no end of their own, as in SQL Server.
[[nodiscard]] bool IsStatementHead(const SqlToken& token, const SqlToken& last,
                                   const SqlToken& next);

} // namespace qe::tool

#endif
