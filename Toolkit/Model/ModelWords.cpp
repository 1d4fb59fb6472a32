#include "Toolkit/Model/ModelWords.h"

#include <array>
#include <utility>

namespace qe::tool {

namespace {

const std::array<std::pair<std::string_view, model::CardinalityRange>, 4> kCardinalities{
    {{"0..1", model::kZeroToOne},
     {"1..1", model::kOneToOne},
     {"0..n", model::kZeroToMany},
     {"1..n", model::kOneToMany}}};

} // namespace

std::optional<model::CardinalityRange> ParseCardinality(std::string_view word)
{
    for (const auto& [name, range] : kCardinalities) {
        if (name == word)
            return range;
    }
    return std::nullopt;
}

std::optional<std::string> CardinalityWord(const model::CardinalityRange& range)
{
    for (const auto& [name, known] : kCardinalities) {
        if (known == range)
            return std::string(name);
    }
    return std::nullopt;
}

std::vector<std::string_view> CardinalityWords()
{
    std::vector<std::string_view> words;
    words.reserve(kCardinalities.size());
    for (const auto& cardinality : kCardinalities)
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

} // namespace qe::tool
