#include "Toolkit/Text/Misspelling.h"

#include "Engine/Model/Names.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace qe::tool {

std::string_view FindMeantWord(std::string_view wrong, std::span<const std::string_view> known)
{
    const std::string folded = model::FoldCase(wrong);
    constexpr std::size_t kLettersPerSlip = 5;
    std::size_t limit = std::max<std::size_t>(1, folded.size() / kLettersPerSlip);
    std::string_view meant;
    for (const std::string_view word : known) {
        if (std::max(word.size(), folded.size()) - std::min(word.size(), folded.size()) > limit)
            continue;
        const std::size_t distance = model::EditDistance(folded, model::FoldCase(word), limit);
        if (distance > limit || (distance == limit && !meant.empty()))
            continue;
        limit = distance;
        meant = word;
    }
    return meant;
}

} // namespace qe::tool
