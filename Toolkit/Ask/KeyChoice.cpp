#include "Toolkit/Ask/KeyChoice.h"

#include "Engine/Expression/ParseReport.h"
#include "Engine/Services/Characters.h"
#include "Source/Rules/Cardinality.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <tuple>

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

/// What the keys of joins say; less is better.
struct KeyMeasure
{
    std::size_t differingWords = 0;
    std::size_t pairs = 0;
    std::size_t optionalJoins = 0;

    void Add(const KeyMeasure& other)
    {
        differingWords += other.differingWords;
        pairs += other.pairs;
        optionalJoins += other.optionalJoins;
    }

    friend bool operator==(const KeyMeasure&, const KeyMeasure&) = default;

    [[nodiscard]] bool IsBetterThan(const KeyMeasure& other) const
    {
        return std::tie(differingWords, other.pairs, optionalJoins) <
               std::tie(other.differingWords, pairs, other.optionalJoins);
    }
};

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

std::size_t CountDifferingWords(const std::string& left, const std::string& right)
{
    const auto wordsOf = [](const std::string& name) {
        const std::vector<std::string> words = SplitWords(name);
        return std::set<std::string>(words.begin(), words.end());
    };
    const std::set<std::string> ofLeft = wordsOf(left);
    const std::set<std::string> ofRight = wordsOf(right);
    std::vector<std::string> differing;
    std::set_symmetric_difference(ofLeft.begin(), ofLeft.end(), ofRight.begin(), ofRight.end(),
                                  std::back_inserter(differing));
    return differing.size();
}

KeyMeasure Measure(const AnswerJoin& join)
{
    KeyMeasure measure;
    for (const ColumnPair& pair : FindColumnPairs(join.condition)) {
        measure.differingWords += CountDifferingWords(pair.left.name, pair.right.name);
        ++measure.pairs;
    }
    const bool isSure = IsExactlyOne(join.leftCardinality) || IsExactlyOne(join.rightCardinality);
    measure.optionalJoins = isSure ? 0 : 1;
    return measure;
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

KeyChoice ChooseByKeys(const Answer& answer)
{
    std::map<amd_id, KeyMeasure> joins;
    for (const auto& [id, join] : answer.joinsById)
        joins.emplace(id, Measure(join));

    std::vector<KeyMeasure> measures;
    for (const Alternative& alternative : answer.alternatives) {
        if (alternative.weight != answer.alternatives.front().weight)
            break;
        KeyMeasure& measure = measures.emplace_back();
        for (const amd_id& id : alternative.joins) {
            if (const auto found = joins.find(id); found != joins.end())
                measure.Add(found->second);
        }
    }
    const auto best = std::min_element(
        measures.begin(), measures.end(),
        [](const KeyMeasure& left, const KeyMeasure& right) { return left.IsBetterThan(right); });
    if (measures.size() < 2)
        return {};
    return {static_cast<std::size_t>(best - measures.begin()),
            std::count(measures.begin(), measures.end(), *best) == 1};
}

} // namespace qe::tool
