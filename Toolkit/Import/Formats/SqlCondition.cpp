#include "Toolkit/Import/Formats/SqlCondition.h"

#include "AQE_Expression.h"
#include "Engine/Expression/Node.h"
#include "Engine/Expression/ParseReport.h"
#include "Engine/Expression/Printer.h"
#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/SqlTokens.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::size_t kMaximumSize = std::size_t{16} * 1024;

/// Quotes names in each of the ways that there are.
constexpr EDialect kQuoting = EDialect::Sqlite;

/// What stands for itself where a column could stand.
constexpr std::array<std::string_view, 22> kKeywords{
    "and",    "as",   "between", "case",  "cast", "current_date", "current_timestamp",
    "else",   "end",  "escape",  "false", "in",   "is",           "like",
    "not",    "null", "or",      "then",  "true", "when",         "ilike",
    "collate"};

bool IsKeyword(const SqlToken& token)
{
    return token.kind == EToken::Word &&
           std::find(kKeywords.begin(), kKeywords.end(), ascii::ToLower(std::string(token.text))) !=
               kKeywords.end();
}

bool IsName(const SqlToken& token)
{
    return token.kind == EToken::Word || token.kind == EToken::QuotedName;
}

/// Writes SQL in the language of conditions.
class ConditionWriter
{
public:
    ConditionWriter(std::string_view sql, const ColumnFinder& findColumn)
        : mFindColumn(findColumn), mTokenizer(sql, kQuoting)
    {
        Advance();
    }

    /// Returns false where that cannot be done; GetProblem tells why.
    bool Write()
    {
        while (mNext.kind != EToken::End) {
            if (!WriteToken())
                return false;
        }
        return true;
    }

    [[nodiscard]] const std::string& GetText() const { return mText; }
    [[nodiscard]] const std::string& GetProblem() const { return mProblem; }
    [[nodiscard]] const std::vector<std::string>& GetUnknown() const { return mUnknown; }

private:
    SqlToken Advance()
    {
        const char* const end = mNext.text.data() + mNext.text.size();
        const SqlToken token = std::exchange(mNext, mTokenizer.Next());
        // Signs that touch make one operator.
        mHasSpace = end != mNext.text.data();
        return token;
    }

    bool WriteToken()
    {
        if (mNext.IsWord("cast")) {
            BeginOperand();
            Append(Advance().text);
            return !mNext.IsSign('(') || WriteCall();
        }
        if (IsKeyword(mNext)) {
            const bool isBeforeType = mNext.IsWord("as");
            Append(Advance().text);
            return !isBeforeType || AppendType();
        }
        if (IsName(mNext))
            return WriteName();
        const bool hasSpace = mHasSpace;
        const SqlToken token = Advance();
        switch (token.kind) {
        case EToken::Number:
            BeginOperand();
            Append(token.text);
            return true;
        case EToken::Text:
            BeginOperand();
            Append(QuoteText(ToContent(token)));
            return true;
        case EToken::Sign:
            return WriteSign(token, hasSpace);
        default:
            return Fail("is no condition in SQL");
        }
    }

    static std::string QuoteText(const std::string& content)
    {
        std::string text = "'";
        for (const char letter : content)
            text += letter == '\'' ? "''" : std::string(1, letter);
        return text + '\'';
    }

    bool WriteSign(const SqlToken& sign, bool hasSpace)
    {
        if (sign.IsSign('(')) {
            mOpen.push_back(mIsCall ? mOperand : mText.size() + 1);
            Append("(");
            return true;
        }
        if (sign.IsSign(')')) {
            Append(")");
            if (mOpen.empty())
                return Fail("has a parenthesis too many");
            mOperand = mOpen.back();
            mOpen.pop_back();
            return true;
        }
        if (sign.IsSign(':') && mNext.IsSign(':') && !mHasSpace) {
            Advance();
            return WriteCast();
        }
        if (sign.IsSign('!') && mNext.IsSign('=') && !mHasSpace) {
            Advance();
            Append("<>");
            return true;
        }
        if (hasSpace || !mEndsInSign)
            mText += ' ';
        mText += sign.text;
        mEndsInSign = true;
        return true;
    }

    /// The operand that was written last is to be of a type.
    bool WriteCast()
    {
        if (mOperand >= mText.size())
            return Fail("has a type without a value before it");
        mText.insert(mOperand, "CAST(");
        Append("AS");
        if (!AppendType())
            return false;
        Append(")");
        return true;
    }

    bool AppendType()
    {
        if (mNext.kind != EToken::Word)
            return Fail("lacks the name of a type");
        Append(Advance().text);
        while (mNext.kind == EToken::Word && !IsKeyword(mNext))
            Append(Advance().text);
        while (mNext.kind == EToken::Number || mNext.IsSign('(') || mNext.IsSign(',')) {
            Append(Advance().text);
            if (mNext.IsSign(')'))
                Append(Advance().text);
        }
        return true;
    }

    bool WriteName()
    {
        std::vector<std::string> names;
        std::string written;
        bool isQuoted = false;
        for (;;) {
            const SqlToken token = Advance();
            isQuoted = isQuoted || token.kind == EToken::QuotedName;
            names.push_back(ToName(token, kQuoting));
            written += token.text;
            if (!mNext.IsSign('.'))
                break;
            Advance();
            written += '.';
            if (!IsName(mNext))
                return Fail("has a name that ends in a dot");
        }
        BeginOperand();
        if (mNext.IsSign('(') && !isQuoted) {
            Append(written);
            return WriteCall();
        }
        const std::optional<EndColumn> column = mFindColumn(names);
        if (!column) {
            mUnknown = names;
            return Fail("names what is no column of its ends: " + JoinTexts(names, {}, "."));
        }
        Append(model::ToReferenceText({column->isLeft ? kLeftEnd : kRightEnd, column->column}));
        return true;
    }

    /// The operand begins with the name of the function.
    bool WriteCall()
    {
        mIsCall = true;
        const SqlToken open = Advance();
        const bool isWritten = WriteSign(open, false);
        mIsCall = false;
        return isWritten;
    }

    void BeginOperand() { mOperand = mText.size() + 1; }

    void Append(std::string_view text)
    {
        mText += ' ';
        mText += text;
        mEndsInSign = false;
    }

    bool Fail(std::string problem)
    {
        mProblem = std::move(problem);
        return false;
    }

    const ColumnFinder& mFindColumn;
    SqlTokenizer mTokenizer;
    SqlToken mNext;
    /// Whether something stands between the last token and the next one.
    bool mHasSpace = false;
    std::string mText;
    std::string mProblem;
    std::vector<std::string> mUnknown;
    bool mEndsInSign = false;
    bool mIsCall = false;
    /// Where in the text the last operand begins, and those of open parentheses.
    std::size_t mOperand = 0;
    std::vector<std::size_t> mOpen;
};

EndColumn ToEndColumn(const expression::Node& reference)
{
    const std::vector<I18NString> names = reference.GetNamePath();
    return {.isLeft = names.front().ToStdString() == kLeftEnd,
            .column = names.back().ToStdString()};
}

/// Adds the columns that a conjunction of equal columns compares; false where it is none.
bool AddPairs(const expression::Node& node, SqlCondition& condition)
{
    using expression::ENodeKind;
    const auto& operands = node.GetOperands();
    if (node.GetKind() == ENodeKind::And)
        return std::all_of(operands.begin(), operands.end(),
                           [&](const auto& operand) { return AddPairs(*operand, condition); });
    if (node.GetKind() != ENodeKind::Comparison || operands.size() != 2 ||
        node.GetOperators().front() != expression::EOperator::Equal ||
        operands[0]->GetKind() != ENodeKind::Reference ||
        operands[1]->GetKind() != ENodeKind::Reference)
        return false;
    EndColumn left = ToEndColumn(*operands[0]);
    EndColumn right = ToEndColumn(*operands[1]);
    if (left.isLeft == right.isLeft)
        return false;
    if (!left.isLeft)
        std::swap(left, right);
    condition.left.push_back(std::move(left.column));
    condition.right.push_back(std::move(right.column));
    return true;
}

/// Returns why the text is no condition between both ends; empty when it is.
std::string FindProblem(const std::string& text)
{
    const expression::ParseReport report = expression::FindReferences(I18NString(text));
    if (report.error)
        return "cannot be read: there should be " + report.error->expected + ", not " +
               report.error->found;
    const auto names = [&](const char* end) {
        return std::any_of(report.references.begin(), report.references.end(),
                           [end](const expression::NamedReference& reference) {
                               return reference.names.front().ToStdString() == end;
                           });
    };
    return names(kLeftEnd) && names(kRightEnd) ? "" : "does not compare columns of both ends";
}

} // namespace

SqlCondition ReadSqlCondition(std::string_view sql, const ColumnFinder& findColumn)
{
    if (sql.size() > kMaximumSize)
        return {.problem = "is too long"};
    ConditionWriter writer(sql, findColumn);
    if (!writer.Write())
        return {.problem = writer.GetProblem(), .unknown = writer.GetUnknown()};
    if (std::string problem = FindProblem(writer.GetText()); !problem.empty())
        return {.problem = std::move(problem)};
    const std::unique_ptr<AQE_Expression> tree(
        AQE_Expression::Create(I18NString(writer.GetText()), nullptr, I18NString("join"), {}));
    SqlCondition condition;
    const auto* const top = static_cast<const expression::Node*>(tree->GetChildren().front());
    if (AddPairs(*top, condition))
        return condition;
    SqlCondition complex;
    expression::Printer(complex.text).Print(*tree);
    return complex;
}

void SuggestEnds(SqlCondition& condition, const std::vector<std::string_view>& ends)
{
    const std::vector<std::string>& names = condition.unknown;
    if (names.size() < 2)
        return;
    std::vector<std::string> nearest = model::NearestNames(names[names.size() - 2], ends);
    for (std::string& name : nearest)
        name += '.' + names.back();
    condition.problem += ToHint(nearest);
}

std::string QualifyNames(std::string_view sql, std::string_view owner)
{
    SqlTokenizer tokens(sql, kQuoting);
    std::string text;
    const char* written = sql.data();
    SqlToken before;
    SqlToken token = tokens.Next();
    while (token.kind != EToken::End) {
        const SqlToken next = tokens.Next();
        const bool isPart = before.IsSign('.') || next.IsSign('.') || next.IsSign('(');
        const bool isType = before.IsSign(':') || before.IsWord("as");
        if (IsName(token) && !IsKeyword(token) && !isPart && !isType) {
            text.append(written, token.text.data());
            text += owner;
            text += '.';
            written = token.text.data();
        }
        before = std::exchange(token, next);
    }
    return text.append(written, sql.data() + sql.size());
}

void TakeCondition(SqlCondition condition, SchemaJoin& join)
{
    join.left.columns = std::move(condition.left);
    join.right.columns = std::move(condition.right);
    join.condition = std::move(condition.text);
}

} // namespace qe::tool
