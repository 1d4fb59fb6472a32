#include "Toolkit/Import/Formats/LeftOut.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

std::string LeftOut::Describe(const Entry& entry)
{
    if (entry.reason.problems == nullptr)
        return entry.name;
    return entry.name + " (" + entry.reason.problems->FindPlace(entry.reason.pointer) + ": " +
           entry.reason.text + ')';
}

std::vector<std::string> LeftOut::List() const
{
    constexpr std::size_t kShown = 5;
    std::vector<std::string> sentences;
    for (const auto& [kind, entries] : mEntries) {
        const std::size_t shown = std::min(entries.size(), kShown);
        std::string sentence = "left out " + std::to_string(entries.size()) + ' ' + kind;
        for (std::size_t i = 0; i < shown; ++i)
            sentence += (i == 0 ? ": " : ", ") + Describe(entries[i]);
        if (shown < entries.size())
            sentence += ", and " + std::to_string(entries.size() - shown) + " more";
        sentences.push_back(std::move(sentence));
    }
    return sentences;
}

} // namespace qe::tool
