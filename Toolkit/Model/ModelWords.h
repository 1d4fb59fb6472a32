#ifndef TOOLKIT_MODEL_MODELWORDS_H
#define TOOLKIT_MODEL_MODELWORDS_H

#include "Engine/Model/ObjectRecord.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// The words that stand for numbers in model files and arguments.

/// Gives the range that "0..1", "1..1", "0..n" or "1..n" means.
[[nodiscard]] std::optional<model::CardinalityRange> ParseCardinality(std::string_view word);
/// Gives the word for a range; nothing for one that has none.
[[nodiscard]] std::optional<std::string> CardinalityWord(const model::CardinalityRange& range);
[[nodiscard]] std::vector<std::string_view> CardinalityWords();

/// A governor's words: the position of each is its value.
using GovernorWords = std::vector<std::string_view>;
/// What happens when query subjects cannot be joined: allow, warn, deny.
[[nodiscard]] const GovernorWords& CrossProductWords();
/// How shortcuts are grouped: by target or by place.
[[nodiscard]] const GovernorWords& ShortcutGroupingWords();
[[nodiscard]] std::optional<std::int32_t> ParseGovernor(const GovernorWords& words,
                                                        std::string_view word);

} // namespace qe::tool

#endif
