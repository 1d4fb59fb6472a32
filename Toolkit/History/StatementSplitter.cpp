#include "Toolkit/History/StatementSplitter.h"

#include "Engine/Services/Characters.h"

#include <algorithm>

namespace qe::tool {

namespace {

bool IsBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n' || letter == '\f';
}

bool IsNameLetter(char letter)
{
    return ascii::IsLetter(letter) || ascii::IsDigit(letter) || letter == '_';
}

} // namespace

std::size_t StatementSplitter::FindBehind(std::string_view wanted, std::size_t position) const
{
    const std::size_t found = mText.find(wanted, position);
    return found == std::string_view::npos ? mText.size() : found + wanted.size();
}

std::size_t StatementSplitter::SkipBlockComment(std::size_t position) const
{
    std::size_t depth = 0;
    while (position < mText.size()) {
        const std::string_view two = mText.substr(position, 2);
        if (two == "/*") {
            ++depth;
            position += 2;
        } else if (two == "*/") {
            position += 2;
            if (--depth == 0)
                break;
        } else {
            ++position;
        }
    }
    return position;
}

std::size_t StatementSplitter::SkipDollarQuote(std::size_t position) const
{
    const bool isInName = position > 0 && IsNameLetter(mText[position - 1]);
    std::size_t end = position + 1;
    while (end < mText.size() && IsNameLetter(mText[end]))
        ++end;
    const bool isParameter = end > position + 1 && ascii::IsDigit(mText[position + 1]);
    if (isInName || isParameter || end == mText.size() || mText[end] != '$')
        return position + 1;
    return FindBehind(mText.substr(position, end + 1 - position), end + 1);
}

std::size_t StatementSplitter::Skip(std::size_t position) const
{
    const std::string_view rest = mText.substr(position);
    if (rest.starts_with("--"))
        return FindBehind("\n", position);
    if (rest.starts_with("/*"))
        return SkipBlockComment(position);
    switch (rest.front()) {
    case '\'':
    case '"':
        // A doubled quote closes one text and opens the next.
        return FindBehind(rest.substr(0, 1), position + 1);
    case '$':
        return SkipDollarQuote(position);
    default:
        return position + 1;
    }
}

void StatementSplitter::MoveTo(std::size_t position)
{
    mLine += static_cast<std::size_t>(
        std::count(mText.begin() + static_cast<std::ptrdiff_t>(mPosition),
                   mText.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
    mPosition = position;
}

void StatementSplitter::SkipBlanks()
{
    std::size_t position = mPosition;
    while (position < mText.size()) {
        const std::string_view two = mText.substr(position, 2);
        if (!IsBlank(two.front()) && two.front() != ';' && two != "--" && two != "/*")
            break;
        position = Skip(position);
    }
    MoveTo(position);
}

bool StatementSplitter::Next(SqlStatement& statement)
{
    SkipBlanks();
    if (mPosition >= mText.size())
        return false;
    std::size_t end = mPosition;
    while (end < mText.size() && mText[end] != ';')
        end = Skip(end);
    statement = {mText.substr(mPosition, end - mPosition), mLine};
    MoveTo(std::min(end + 1, mText.size()));
    return true;
}

} // namespace qe::tool
