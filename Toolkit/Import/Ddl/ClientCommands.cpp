#include "Toolkit/Import/Ddl/ClientCommands.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/TextEdges.h"

#include <algorithm>
#include <array>

namespace qe::tool {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kBlanks = " \t\r\f\v";

constexpr std::array kSqlPlusCommands{
    "rem"sv,    "remark"sv,   "prompt"sv, "set"sv,     "spool"sv,    "define"sv,     "undefine"sv,
    "conn"sv,   "connect"sv,  "accept"sv, "show"sv,    "whenever"sv, "disconnect"sv, "host"sv,
    "exit"sv,   "quit"sv,     "pause"sv,  "start"sv,   "column"sv,   "col"sv,        "ttitle"sv,
    "btitle"sv, "break"sv,    "clear"sv,  "compute"sv, "variable"sv, "var"sv,        "print"sv,
    "timing"sv, "describe"sv, "exec"sv,   "execute"sv, "run"sv,
};

} // namespace

void ClientCommands::Skip()
{
    while (true) {
        const SqlToken token = mTokenizer->Next();
        if (token.kind == EToken::Terminator || SkipCommand(token))
            continue;
        if (EndsBatch(token)) {
            SkipLine();
            continue;
        }
        mTokenizer->MoveTo(token.kind == EToken::End ? mScript.size() : OffsetOf(token));
        return;
    }
}

bool ClientCommands::SkipCommand(const SqlToken& token)
{
    if (token.kind == EToken::End || token.kind == EToken::Unended)
        return false;
    const bool isDelimiter =
        mDialect == EDialect::MySql && token.IsWord("delimiter") && BeginsLine(token);
    const bool isSqlPlus = mDialect == EDialect::Oracle && IsSqlPlusCommand(token);
    const bool isDot = mDialect == EDialect::Sqlite && token.IsSign('.') && BeginsLine(token);
    const bool isSource = mDialect == EDialect::MySql &&
                          (token.IsWord("source") || token.IsSign('\\')) && BeginsLine(token);
    if (!isDelimiter && !isSqlPlus && !isDot && !isSource && !IsCommand(token))
        return false;
    if (isDelimiter)
        SetTerminator();
    else
        mTokenizer->MoveTo(OffsetOf(token));
    SkipLine(isSqlPlus ? '-' : '\n');
    return true;
}

bool ClientCommands::IsCommand(const SqlToken& token) const
{
    if (mDialect == EDialect::PostgreSql)
        return token.IsSign('\\');
    return mDialect == EDialect::SqlServer && (token.IsSign(':') || token.IsSign('!')) &&
           BeginsLine(token);
}

bool ClientCommands::IsSqlPlusCommand(const SqlToken& token) const
{
    if (!BeginsLine(token))
        return false;
    if (token.IsSign('!') || token.text.front() == '@')
        return true;
    return std::any_of(kSqlPlusCommands.begin(), kSqlPlusCommands.end(),
                       [&token](std::string_view command) { return token.IsWord(command); });
}

void ClientCommands::SetTerminator()
{
    const std::string_view terminator = Trim(LineBehind(mTokenizer->GetOffset()));
    if (!terminator.empty())
        mTokenizer->SetTerminator(terminator.substr(0, terminator.find_first_of(kBlanks)));
}

bool ClientCommands::EndsBatch(const SqlToken& token) const
{
    const bool isGo = mDialect == EDialect::SqlServer && token.IsWord("go");
    const bool isSlash = mDialect == EDialect::Oracle && token.IsSign('/');
    if ((!isGo && !isSlash) || !BeginsLine(token))
        return false;
    const std::string_view behind = Trim(LineBehind(OffsetOf(token) + token.text.size()));
    return behind.empty() || behind.starts_with("--") ||
           (isGo && (behind.find_first_not_of("0123456789;") == std::string_view::npos));
}

bool ClientCommands::SkipRoutine()
{
    if (mDialect != EDialect::SqlServer && mDialect != EDialect::Oracle)
        return false;
    while (true) {
        const SqlToken token = mTokenizer->Next();
        if (token.kind == EToken::End || token.kind == EToken::Unended)
            return true;
        if (EndsBatch(token)) {
            SkipLine();
            return true;
        }
    }
}

void ClientCommands::SkipRows(std::span<const SqlToken> statement)
{
    if (std::none_of(statement.begin(), statement.end(),
                     [](const SqlToken& token) { return token.IsWord("stdin"); }))
        return;
    SkipLine();
    while (mTokenizer->GetOffset() < mScript.size()) {
        const bool isLast = Trim(LineBehind(mTokenizer->GetOffset())) == "\\.";
        SkipLine();
        if (isLast)
            return;
    }
}

bool ClientCommands::BeginsLine(const SqlToken& token) const
{
    std::size_t offset = OffsetOf(token);
    while (offset > 0 && kBlanks.find(mScript[offset - 1]) != std::string_view::npos)
        --offset;
    return offset == 0 || mScript[offset - 1] == '\n';
}

std::string_view ClientCommands::LineBehind(std::size_t offset) const
{
    return mScript.substr(offset, mScript.find('\n', offset) - offset);
}

void ClientCommands::SkipLine(char continuation)
{
    while (true) {
        const std::string_view line = LineBehind(mTokenizer->GetOffset());
        mTokenizer->MoveTo(std::min(mTokenizer->GetOffset() + line.size() + 1, mScript.size()));
        if (!Trim(line).ends_with(continuation))
            return;
    }
}

} // namespace qe::tool
