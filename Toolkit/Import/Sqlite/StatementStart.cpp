#include "Toolkit/Import/Sqlite/StatementStart.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

namespace {

bool IsWordByte(char c)
{
    return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// Reads words and names from the front of a text.
class WordReader
{
public:
    explicit WordReader(std::string_view text) : mRest(text) { SkipSpace(); }

    [[nodiscard]] bool IsAtEnd() const { return mRest.empty(); }

    /// Skips the word, which is given in lower case, if it comes next. Returns whether it did.
    bool Skip(std::string_view word)
    {
        if (ascii::ToLower(std::string(mRest.substr(0, CountWordBytes()))) != word)
            return false;
        Advance(word.size());
        return true;
    }

    bool SkipSign(char sign)
    {
        if (mRest.empty() || mRest.front() != sign)
            return false;
        Advance(1);
        return true;
    }

    /// Returns the name that comes next, with or without quotes; empty when none does.
    std::string ReadName()
    {
        constexpr std::string_view kQuotes = "\"'`[";
        if (!mRest.empty() && kQuotes.find(mRest.front()) != std::string_view::npos)
            return ReadQuoted(mRest.front() == '[' ? ']' : mRest.front());
        const std::size_t size = CountWordBytes();
        const std::string name(mRest.substr(0, size));
        Advance(size);
        return ascii::ToLower(name);
    }

private:
    [[nodiscard]] std::size_t CountWordBytes() const
    {
        return static_cast<std::size_t>(std::find_if_not(mRest.begin(), mRest.end(), IsWordByte) -
                                        mRest.begin());
    }

    std::string ReadQuoted(char end)
    {
        std::string name;
        std::size_t position = 1;
        for (; position < mRest.size(); ++position) {
            if (mRest[position] == end) {
                const bool isDoubled = end != ']' && mRest.substr(position + 1).starts_with(end);
                if (!isDoubled)
                    break;
                ++position;
            }
            name += mRest[position];
        }
        Advance(position + 1);
        return ascii::ToLower(name);
    }

    void Advance(std::size_t count)
    {
        mRest.remove_prefix(std::min(count, mRest.size()));
        SkipSpace();
    }

    /// Skips space and comments.
    void SkipSpace()
    {
        while (!mRest.empty()) {
            if (ascii::IsSpace(mRest.front()))
                mRest.remove_prefix(1);
            else if (mRest.starts_with("--"))
                RemoveThrough("\n");
            else if (mRest.starts_with("/*"))
                RemoveThrough("*/");
            else
                return;
        }
    }

    void RemoveThrough(std::string_view end)
    {
        const std::size_t found = mRest.find(end, 2);
        mRest.remove_prefix(found == std::string_view::npos ? mRest.size() : found + end.size());
    }

    std::string_view mRest;
};

/// Skips "IF NOT EXISTS". Returns false when only a part of it is there.
bool SkipCondition(WordReader& words)
{
    return !words.Skip("if") || (words.Skip("not") && words.Skip("exists"));
}

StatementStart ReadTable(WordReader& words)
{
    if (!SkipCondition(words))
        return {};
    const std::string name = words.ReadName();
    if (name.empty() || !words.SkipSign('('))
        return {};
    return {.kind = EStatement::CreateTable, .name = name};
}

StatementStart ReadIndex(WordReader& words)
{
    if (!SkipCondition(words))
        return {};
    const std::string name = words.ReadName();
    if (name.empty() || !words.Skip("on"))
        return {};
    const std::string table = words.ReadName();
    if (table.empty() || !words.SkipSign('('))
        return {};
    return {.kind = EStatement::CreateIndex, .name = name, .table = table};
}

} // namespace

StatementStart ReadStatementStart(std::string_view text)
{
    WordReader words(text);
    if (words.Skip("create")) {
        if (words.Skip("table"))
            return ReadTable(words);
        static_cast<void>(words.Skip("unique"));
        return words.Skip("index") ? ReadIndex(words) : StatementStart();
    }
    const bool isSession = words.IsAtEnd() || words.Skip("begin") || words.Skip("commit") ||
                           words.Skip("end") ||
                           (words.Skip("pragma") && words.Skip("foreign_keys"));
    return {.kind = isSession ? EStatement::Session : EStatement::Other};
}

} // namespace qe::tool
