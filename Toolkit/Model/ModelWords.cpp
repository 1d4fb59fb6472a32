#include "Toolkit/Model/ModelWords.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qe::tool {

namespace {

const std::array<std::pair<std::string_view, model::CardinalityRange>, 4> Cardinalities{
    {{"0..1", model::kZeroToOne},
     {"1..1", model::kOneToOne},
     {"0..n", model::kZeroToMany},
     {"1..n", model::kOneToMany}}};

} // namespace

std::optional<model::CardinalityRange> ParseCardinality(std::string_view word)
{
    for (const auto& [name, range] : Cardinalities) {
        if (name == word)
            return range;
    }
    return std::nullopt;
}

std::optional<std::string> CardinalityWord(const model::CardinalityRange& range)
{
    for (const auto& [name, known] : Cardinalities) {
        if (known == range)
            return std::string(name);
    }
    return std::nullopt;
}

std::vector<std::string_view> CardinalityWords()
{
    std::vector<std::string_view> words;
    words.reserve(Cardinalities.size());
    for (const auto& cardinality : Cardinalities)
        words.push_back(cardinality.first);
    return words;
}

const GovernorWords& CrossProductWords()
{
    static const GovernorWords words{"allow", "warn", "deny"};
    return words;
}

const GovernorWords& ShortcutGroupingWords()
{
    static const GovernorWords words{"target", "place"};
    return words;
}

std::optional<std::int32_t> ParseGovernor(const GovernorWords& words, std::string_view word)
{
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end())
        return std::nullopt;
    return static_cast<std::int32_t>(found - words.begin());
}

} // namespace qe::tool
