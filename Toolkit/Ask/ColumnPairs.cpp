#include "Toolkit/Ask/ColumnPairs.h"

#include "Engine/Expression/ParseReport.h"
#include "Engine/Services/Characters.h"

#include <cstddef>

namespace qe::tool {
namespace {

Column ToColumn(const expression::NamedReference& reference)
{
    Column column;
    for (const I18NString& name : reference.names)
        column.subject.push_back(name.ToStdString());
    column.name = column.subject.back();
    column.subject.pop_back();
    return column;
}

} // namespace

std::vector<ColumnPair> FindColumnPairs(const std::string& condition)
{
    const auto references = expression::FindReferences(I18NString(condition)).references;
    std::vector<ColumnPair> pairs;
    for (std::size_t index = 1; index < references.size(); ++index) {
        const Column left = ToColumn(references[index - 1]);
        const Column right = ToColumn(references[index]);
        if (left.subject.empty() || right.subject.empty() || left.subject == right.subject)
            continue;
        pairs.push_back({left, right});
        // The next pair begins behind this one.
        ++index;
    }
    return pairs;
}

namespace {

bool IsWordLetter(char letter)
{
    return ascii::IsLetter(letter) || ascii::IsDigit(letter) ||
           static_cast<unsigned char>(letter) >= 0x80;
}

/// Returns whether a capital at `position` begins a word: behind a lower-case letter or digit, or
/// as the last of several capitals before a lower-case letter.
bool BeginsWord(std::string_view name, std::size_t position)
{
    if (position == 0 || !ascii::IsUpper(name[position]))
        return false;
    const char before = name[position - 1];
    const bool isBeforeLower = position + 1 < name.size() && ascii::IsLower(name[position + 1]);
    return ascii::IsLower(before) || ascii::IsDigit(before) ||
           (ascii::IsUpper(before) && isBeforeLower);
}

} // namespace

std::vector<std::string> SplitWords(std::string_view name)
{
    std::vector<std::string> words;
    bool isInside = false;
    for (std::size_t position = 0; position < name.size(); ++position) {
        const char letter = name[position];
        if (!IsWordLetter(letter)) {
            isInside = false;
            continue;
        }
        if (!isInside || BeginsWord(name, position))
            words.emplace_back();
        isInside = true;
        words.back() += ascii::ToLower(letter);
    }
    return words;
}

} // namespace qe::tool
