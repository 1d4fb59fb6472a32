#include "Toolkit/Import/Ddl/StatementReader.h"

#include <algorithm>

namespace qe::tool {

namespace {

bool SaysNothing(EStatementKind kind)
{
    return kind == EStatementKind::Other || kind == EStatementKind::Routine;
}

/// Returns whether a right may be named next, as "CREATE TABLE" in a GRANT: rights are called like
/// statements.
bool MayNameRight(const SqlToken& first, const SqlToken& last)
{
    const bool grants = first.IsWord("grant") || first.IsWord("deny") || first.IsWord("revoke");
    return grants && (last.text.data() == first.text.data() || last.IsSign(',') ||
                      last.IsWord("with") || last.IsWord("for"));
}

/// Follows the blocks of a routine, which hold statements of their own.
std::size_t FollowBlocks(std::size_t blocks, const SqlToken& token, const SqlToken& last)
{
    const bool isBehindEnd = last.IsWord("end");
    if (token.IsWord("begin") || (token.IsWord("case") && !isBehindEnd))
        return blocks + 1;
    // END IF ends no block, and was counted as one that does.
    const bool endsOther = isBehindEnd && (token.IsWord("if") || token.IsWord("loop") ||
                                           token.IsWord("while") || token.IsWord("repeat"));
    if (endsOther)
        return blocks + 1;
    return token.IsWord("end") && blocks > 0 ? blocks - 1 : blocks;
}

} // namespace

StatementReader::StatementReader(std::string_view script, EDialect dialect)
    : mScript(script),
      mDialect(dialect),
      mTokenizer(script, dialect),
      mCommands(script, dialect, mTokenizer)
{}

bool StatementReader::Read(ScriptStatement& statement)
{
    mCommands.Skip();
    const std::size_t begin = mTokenizer.GetOffset();
    if (begin >= mScript.size())
        return false;
    statement.kind = EStatementKind::Other;
    statement.tokens.clear();
    statement.line = CountLine(begin);
    State state;
    SqlToken token = mTokenizer.Next();
    while (Take(token, statement, state))
        token = mTokenizer.Next();
    if (!state.isClassified)
        statement.kind = ClassifyStatement(statement.tokens, mDialect);
    const std::size_t end = token.kind == EToken::End ? mScript.size() : OffsetOf(token);
    statement.text = mScript.substr(begin, end - begin);
    if (statement.kind == EStatementKind::Copy)
        mCommands.SkipRows(statement.tokens);
    return true;
}

bool StatementReader::Take(const SqlToken& token, ScriptStatement& statement, State& state)
{
    if (token.kind == EToken::End || token.kind == EToken::Unended) {
        if (token.kind == EToken::Unended)
            mUnendedLine = CountLine(OffsetOf(token));
        return false;
    }
    const bool ends = EndsAt(token, statement, state);
    if (!state.isClassified && (ends || statement.tokens.size() == kTokensThatTell))
        Classify(statement, state);
    if (statement.kind == EStatementKind::Routine && mCommands.SkipRoutine())
        return false;
    const bool isInBlock = state.blocks > 0 && token.text == ";";
    if (ends && !isInBlock)
        return false;
    if (!state.isClassified || !SaysNothing(statement.kind))
        statement.tokens.push_back(token);
    if (statement.kind == EStatementKind::Routine)
        state.blocks = FollowBlocks(state.blocks, token, state.last);
    if (token.IsSign('('))
        ++state.depth;
    else if (token.IsSign(')') && state.depth > 0)
        --state.depth;
    state.last = token;
    return true;
}

void StatementReader::Classify(ScriptStatement& statement, State& state) const
{
    statement.kind = ClassifyStatement(statement.tokens, mDialect);
    state.isClassified = true;
    if (statement.kind != EStatementKind::Routine)
        return;
    SqlToken last;
    for (const SqlToken& token : statement.tokens) {
        state.blocks = FollowBlocks(state.blocks, token, last);
        last = token;
    }
}

bool StatementReader::EndsAt(const SqlToken& token, const ScriptStatement& statement,
                             const State& state)
{
    if (token.kind == EToken::Terminator)
        return true;
    const bool endsBefore =
        mCommands.EndsBatch(token) || mCommands.IsCommand(token) ||
        (state.depth == 0 && !statement.tokens.empty() && BeginsAnother(token, statement, state));
    if (endsBefore)
        MoveTo(token);
    return endsBefore;
}

bool StatementReader::BeginsAnother(const SqlToken& token, const ScriptStatement& statement,
                                    const State& state)
{
    if (mDialect == EDialect::SqlServer && token.kind == EToken::Word)
        return !MayNameRight(statement.tokens.front(), state.last) &&
               IsStatementHead(token, state.last, Peek());
    // Definitions that a server lists have no terminators.
    return mDialect == EDialect::Oracle && (token.IsWord("create") || token.IsWord("alter")) &&
           mCommands.BeginsLine(token) && Peek().IsWord("table");
}

SqlToken StatementReader::Peek()
{
    const std::size_t offset = mTokenizer.GetOffset();
    const SqlToken token = mTokenizer.Next();
    mTokenizer.MoveTo(offset);
    return token;
}

std::size_t StatementReader::OffsetOf(const SqlToken& token) const
{
    return static_cast<std::size_t>(token.text.data() - mScript.data());
}

std::size_t StatementReader::CountLine(std::size_t offset)
{
    mLine += static_cast<std::size_t>(
        std::count(mScript.begin() + static_cast<std::ptrdiff_t>(mLineOffset),
                   mScript.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
    mLineOffset = offset;
    return mLine;
}

} // namespace qe::tool
