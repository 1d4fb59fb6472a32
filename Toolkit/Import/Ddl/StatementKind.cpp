#include "Toolkit/Import/Ddl/StatementKind.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace qe::tool {

namespace {

using Tokens = std::span<const SqlToken>;
using Words = std::initializer_list<std::string_view>;

bool IsOneOf(const SqlToken& token, const Words& words)
{
    return std::any_of(words.begin(), words.end(),
                       [&token](std::string_view word) { return token.IsWord(word); });
}

bool StartsWith(Tokens tokens, const Words& words)
{
    return tokens.size() >= words.size() &&
           std::equal(
               words.begin(), words.end(), tokens.begin(),
               [](std::string_view word, const SqlToken& token) { return token.IsWord(word); });
}

/// Returns the position of the first of the words, before the first parenthesis; the number of
/// tokens when there is none.
std::size_t FindWord(Tokens tokens, const Words& words)
{
    for (std::size_t i = 0; i < tokens.size() && !tokens[i].IsSign('('); ++i)
        if (IsOneOf(tokens[i], words))
            return i;
    return tokens.size();
}

/// What may stand between CREATE and TABLE.
bool IsTableModifier(const SqlToken& token)
{
    return IsOneOf(token, {"or", "replace", "global", "local", "temp", "temporary", "unlogged",
                           "foreign", "external", "private", "immutable", "blockchain", "sharded",
                           "duplicated", "column", "row", "cached", "memory"});
}

/// CREATE OR REPLACE UNIQUE NONCLUSTERED COLUMNSTORE INDEX is the longest form.
constexpr std::size_t kWordsBeforeIndex = 6;

bool CreatesRoutine(Tokens tokens)
{
    const std::size_t found =
        FindWord(tokens.subspan(1), {"procedure", "proc", "function", "trigger", "event", "package",
                                     "table", "view", "index", "type", "database", "schema"});
    return found + 1 < tokens.size() && IsOneOf(tokens[found + 1], {"procedure", "proc", "function",
                                                                    "trigger", "event", "package"});
}

EStatementKind ClassifyCreate(Tokens tokens, EDialect dialect)
{
    const std::size_t table = FindWord(tokens, {"table"});
    if (table < tokens.size() &&
        std::all_of(tokens.begin() + 1, tokens.begin() + static_cast<std::ptrdiff_t>(table),
                    IsTableModifier))
        return EStatementKind::CreateTable;
    if (CreatesRoutine(tokens))
        return EStatementKind::Routine;
    if (StartsWith(tokens, {"create", "schema"}))
        return EStatementKind::CreateSchema;
    const std::size_t unique = FindWord(tokens, {"unique"});
    const std::size_t index = FindWord(tokens, {"index"});
    if (unique < index && index < tokens.size() && index < kWordsBeforeIndex)
        return EStatementKind::CreateUniqueIndex;
    const std::size_t type = FindWord(tokens, {"type"});
    if (dialect == EDialect::Oracle && type < tokens.size() && type < 6)
        return EStatementKind::Routine;
    if (dialect == EDialect::SqlServer && FindWord(tokens, {"view"}) < tokens.size())
        return EStatementKind::Routine;
    return EStatementKind::Other;
}

EStatementKind ClassifyAlter(Tokens tokens, EDialect dialect)
{
    const std::size_t table = FindWord(tokens, {"table"});
    if (table <= 2)
        return EStatementKind::AlterTable;
    if (dialect == EDialect::SqlServer && tokens.size() > 1 &&
        IsOneOf(tokens[1], {"procedure", "proc", "function", "trigger", "view"}))
        return EStatementKind::Routine;
    return EStatementKind::Other;
}

} // namespace

EStatementKind ClassifyStatement(std::span<const SqlToken> tokens, EDialect dialect)
{
    if (tokens.empty())
        return EStatementKind::Other;
    if (tokens.front().IsWord("create"))
        return ClassifyCreate(tokens, dialect);
    if (tokens.front().IsWord("alter"))
        return ClassifyAlter(tokens, dialect);
    if (dialect == EDialect::Oracle && IsOneOf(tokens.front(), {"begin", "declare"}))
        return EStatementKind::Routine;
    if (StartsWith(tokens, {"drop", "table"}) || StartsWith(tokens, {"drop", "foreign", "table"}))
        return EStatementKind::DropTable;
    if (StartsWith(tokens, {"drop", "index"}))
        return EStatementKind::DropIndex;
    if (StartsWith(tokens, {"rename", "table"}))
        return EStatementKind::RenameTable;
    if (StartsWith(tokens, {"comment", "on", "table"}) ||
        StartsWith(tokens, {"comment", "on", "column"}))
        return EStatementKind::Comment;
    if (tokens.front().IsWord("use") || StartsWith(tokens, {"set", "search_path"}) ||
        StartsWith(tokens, {"set", "session", "search_path"}) ||
        FindWord(tokens, {"set_config"}) < tokens.size())
        return EStatementKind::ChooseSchema;
    return tokens.front().IsWord("copy") ? EStatementKind::Copy : EStatementKind::Other;
}

bool IsStatementHead(const SqlToken& token, const SqlToken& last, const SqlToken& next)
{
    if (token.kind != EToken::Word)
        return false;
    if (IsOneOf(token, {"update", "delete"}))
        return !last.IsWord("on");
    if (token.IsWord("set"))
        return !IsOneOf(last, {"delete", "update"});
    if (token.IsWord("if"))
        return !IsOneOf(last, {"table", "constraint", "column", "index"});
    if (token.IsWord("alter"))
        return !next.IsWord("column");
    if (token.IsWord("drop"))
        return IsOneOf(next, {"table", "procedure", "proc", "view", "index", "function", "trigger",
                              "database", "schema", "type"});
    if (IsOneOf(token, {"exec", "execute"}))
        return !last.IsWord("with");
    return IsOneOf(token, {"create", "insert", "select", "print", "begin", "declare", "while",
                           "truncate", "use", "raiserror", "grant", "deny", "revoke", "return",
                           "end", "else", "commit", "rollback", "dbcc"});
}

} // namespace qe::tool
