#include "Toolkit/Import/Formats/LeftOut.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

std::vector<std::string> LeftOut::List() const
{
    constexpr std::size_t kShown = 5;
    std::vector<std::string> sentences;
    for (const auto& [kind, names] : mNames) {
        const std::size_t shown = std::min(names.size(), kShown);
        std::string sentence =
            "left out " + std::to_string(names.size()) + ' ' + kind + ": " +
            JoinTexts(std::vector<std::string>(names.begin(),
                                               names.begin() + static_cast<std::ptrdiff_t>(shown)));
        if (shown < names.size())
            sentence += ", and " + std::to_string(names.size() - shown) + " more";
        sentences.push_back(std::move(sentence));
    }
    return sentences;
}

} // namespace qe::tool
