#ifndef TOOLKIT_HISTORY_HISTORYENTRIES_H
#define TOOLKIT_HISTORY_HISTORYENTRIES_H

#include "Toolkit/History/PastQuery.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <vector>

namespace qe::tool {

/// What a file of past queries holds.
struct HistoryEntries
{
    /// How many of the entries that cannot be read are named.
    static constexpr std::size_t kNamed = 5;

    std::vector<PastQuery> queries{};
    /// The lines or statements that there are.
    std::size_t entries = 0;
    /// How many of them cannot be read, and why the first of these cannot.
    std::size_t unread = 0;
    std::vector<InputProblem> firstUnread{};

    /// Counts an entry that cannot be read.
    void AddUnread(const InputProblem& problem)
    {
        if (++unread <= kNamed)
            firstUnread.push_back(problem);
    }
};

} // namespace qe::tool

#endif
