#ifndef SOURCE_RANKING_TWOGROUPPATHS_H
#define SOURCE_RANKING_TWOGROUPPATHS_H

#include "Joins/RefinerServices.h"
#include "Ranking/PathChoice.h"
#include "amd_id.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace qe {

/// The least-weight paths that lead from one group of query subjects to another, each with the
/// pair of query subjects at its ends.
class TwoGroupPaths
{
public:
    using Ids = std::vector<amd_id>;
    using EndPair = std::pair<amd_id, amd_id>;

    /// The lists of one request, borrowed.
    struct Lists
    {
        const Ids& firstSet;
        const Ids& avoidedJoins;
        const Ids& secondSet;
        const Ids& furtherAvoidedJoins;
        const Ids& favouredJoins;
        const Ids& requiredJoins;
        const Ids& nodes;
        const Ids& joins;
    };

    /// Searches the paths. Sets `resultWeight` to their weight: to the unreachable distance when
    /// there are none, and to -1 when there was nothing to search.
    TwoGroupPaths(const Lists& lists, const RefinerServices& services, int& resultWeight);

    [[nodiscard]] const std::vector<Ids>& GetPaths() const { return mCandidates.paths; }
    [[nodiscard]] const EndPair& GetEndPair(std::size_t index) const { return mEndPairs[index]; }

    /// Gives the chosen path; there must be one.
    [[nodiscard]] Ids Choose(const ChoiceRules& rules) const;

    /// Gives the position of a path, of the first one when it was found more than once; 0 for any
    /// other path.
    [[nodiscard]] std::size_t GetIndex(const Ids& path) const;

    /// Gives the positions of the best paths, ascending.
    [[nodiscard]] std::vector<std::size_t> ChooseBest() const;

private:
    RefinerServices mServices;
    CandidatePaths mCandidates;
    std::vector<EndPair> mEndPairs;
};

} // namespace qe

#endif
