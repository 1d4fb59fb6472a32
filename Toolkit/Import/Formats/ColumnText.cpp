#include "Toolkit/Import/Formats/ColumnText.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Import/Schema/StatedJoins.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qe::tool {

namespace {

/// Words of expressions that are no columns.
constexpr std::array<std::string_view, 22> kKeywords{
    "and",  "as",   "between", "case",  "cast",  "current_date", "current_timestamp",
    "else", "end",  "escape",  "false", "ilike", "in",           "interval",
    "is",   "like", "not",     "null",  "or",    "then",         "true",
    "when"};

bool IsNameByte(char c)
{
    return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Returns the closing quote of a quoted name that begins so; 0 for none.
char ClosingOf(char opening)
{
    if (opening == '[')
        return ']';
    return opening == '"' || opening == '`' ? opening : '\0';
}

/// Takes a text apart into names, quoted texts and signs.
class Pieces
{
public:
    explicit Pieces(std::string_view text) : mText(text) {}

    [[nodiscard]] bool IsAtEnd() const { return mText.empty(); }
    [[nodiscard]] char Next() const { return mText.empty() ? '\0' : mText.front(); }
    void SkipSpace()
    {
        while (!mText.empty() && ascii::IsSpace(mText.front()))
            mText.remove_prefix(1);
    }
    std::string_view Take(std::size_t size)
    {
        const std::string_view piece = mText.substr(0, size);
        mText.remove_prefix(piece.size());
        return piece;
    }
    std::string_view TakeWord()
    {
        const auto end = std::find_if_not(mText.begin(), mText.end(), IsNameByte);
        return Take(static_cast<std::size_t>(end - mText.begin()));
    }
    /// Takes what stands between quotes, which are doubled within; with its quotes.
    std::string_view TakeQuoted(char closing)
    {
        std::size_t end = mText.find(closing, 1);
        while (end != std::string_view::npos && end + 1 < mText.size() && mText[end + 1] == closing)
            end = mText.find(closing, end + 2);
        return Take(end == std::string_view::npos ? mText.size() : end + 1);
    }

private:
    std::string_view mText;
};

/// Returns what stands between the quotes.
std::string Unquote(std::string_view quoted)
{
    const char closing = ClosingOf(quoted.front());
    std::string name;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        name += quoted[i];
        // Within the quotes they are doubled.
        if (quoted[i] == closing)
            ++i;
    }
    return name;
}

/// Returns a name, with or without quotes; nothing where none comes next.
std::optional<std::string> TakeName(Pieces& pieces)
{
    if (const char closing = ClosingOf(pieces.Next()); closing != '\0') {
        const std::string_view quoted = pieces.TakeQuoted(closing);
        if (quoted.size() < 2 || quoted.back() != closing)
            return std::nullopt;
        return Unquote(quoted);
    }
    const std::string_view word = pieces.TakeWord();
    return word.empty() ? std::nullopt : std::optional(std::string(word));
}

std::string QuoteSqlName(std::string_view name)
{
    std::string quoted = "\"";
    for (const char c : name) {
        quoted += c;
        if (c == '"')
            quoted += c;
    }
    return quoted + '"';
}

bool IsColumnWord(std::string_view word)
{
    return !ascii::IsDigit(word.front()) &&
           std::find(kKeywords.begin(), kKeywords.end(), ascii::ToLower(std::string(word))) ==
               kKeywords.end();
}

/// Writes an expression with its columns behind the name of an end.
class Qualifier
{
public:
    Qualifier(std::string_view expression, const char* end, SchemaTable& table)
        : mPieces(expression), mEnd(end), mTable(table)
    {}

    std::string Write()
    {
        while (!mPieces.IsAtEnd())
            WriteNext();
        return std::move(mText);
    }

private:
    void WriteNext()
    {
        const char next = mPieces.Next();
        if (next == '\'') {
            mText += mPieces.TakeQuoted(next);
        } else if (const char closing = ClosingOf(next); closing != '\0') {
            WriteColumn(Unquote(mPieces.TakeQuoted(closing)));
        } else if (IsNameByte(next)) {
            WriteWord();
        } else {
            mIsType = mIsType && next != ')';
            mText += mPieces.Take(1);
        }
    }

    void WriteWord()
    {
        const std::string word(mPieces.TakeWord());
        Pieces behind = mPieces;
        behind.SkipSpace();
        const bool isCall = behind.Next() == '(';
        if (mIsType || isCall || behind.Next() == '.' || !IsColumnWord(word))
            mText += word;
        else
            WriteColumn(word);
        mIsType = mIsType || ascii::ToLower(word) == "as";
    }

    void WriteColumn(const std::string& column)
    {
        EnsureColumn(mTable, column);
        mText += model::ToReferenceText({mEnd, column});
    }

    Pieces mPieces;
    const char* mEnd;
    SchemaTable& mTable;
    std::string mText;
    /// Whether what comes is the type of a CAST.
    bool mIsType = false;
};

} // namespace

std::vector<std::string> SplitSqlName(std::string_view name)
{
    Pieces pieces(name);
    std::vector<std::string> parts;
    for (;;) {
        pieces.SkipSpace();
        const std::optional<std::string> part = TakeName(pieces);
        if (!part)
            return {};
        parts.push_back(*part);
        pieces.SkipSpace();
        if (pieces.IsAtEnd())
            return parts;
        if (pieces.Take(1) != ".")
            return {};
    }
}

std::string WriteSqlName(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty())
            text += '.';
        const bool isPlain = !part.empty() && !ascii::IsDigit(part.front()) &&
                             std::all_of(part.begin(), part.end(), IsNameByte);
        text += isPlain ? part : QuoteSqlName(part);
    }
    return text;
}

std::optional<std::string> ReadColumnName(const SchemaTable& table, std::string_view text)
{
    const std::string whole(text);
    const std::vector<std::string> parts = SplitSqlName(text);
    const bool isName = parts.size() == 1 && !ascii::IsDigit(text.front());
    if (isName && parts.front() == whole)
        return whole;
    if (FindColumn(table.columns, whole) != nullptr)
        return whole;
    return isName ? std::optional(parts.front()) : std::nullopt;
}

std::string QualifyColumns(std::string_view expression, const char* end, SchemaTable& table)
{
    return Qualifier(expression, end, table).Write();
}

void CompareEnds(const ComparedEnd& left, const ComparedEnd& right, SchemaJoin& join)
{
    const auto leftColumn = ReadColumnName(left.table, left.text);
    const auto rightColumn = ReadColumnName(right.table, right.text);
    if (leftColumn && rightColumn && join.condition.empty()) {
        EnsureColumn(left.table, *leftColumn);
        EnsureColumn(right.table, *rightColumn);
        join.left.columns.push_back(*leftColumn);
        join.right.columns.push_back(*rightColumn);
        return;
    }
    const auto add = [&join](const std::string& from, const std::string& to) {
        join.condition += (join.condition.empty() ? "" : " AND ") + from + " = " + to;
    };
    for (std::size_t i = 0; i < join.left.columns.size(); ++i)
        add(model::ToReferenceText({kLeftEnd, join.left.columns[i]}),
            model::ToReferenceText({kRightEnd, join.right.columns[i]}));
    join.left.columns.clear();
    join.right.columns.clear();
    add(QualifyColumns(left.text, kLeftEnd, left.table),
        QualifyColumns(right.text, kRightEnd, right.table));
}

} // namespace qe::tool
