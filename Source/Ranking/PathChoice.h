#ifndef SOURCE_RANKING_PATHCHOICE_H
#define SOURCE_RANKING_PATHCHOICE_H

#include "AUT_RefPtr.h"
#include "Joins/RefinerServices.h"
#include "QEJoinTree.h"
#include "Ranking/PathRanking.h"
#include "amd_id.h"

#include <cstddef>
#include <vector>

class AQE_I_PathSelector;

namespace qe {

/// The candidate paths of one operation, with all that is needed to weigh them.
struct CandidatePaths
{
    using Ids = std::vector<amd_id>;

    /// The tree that found the paths.
    AUT_RefPtr<AQE_JoinTree> tree;
    std::vector<Ids> paths;
    /// The joins that no folder distance is added to. Borrowed.
    const Ids& favouredJoins;
    const Ids& requiredJoins;
};

/// How one of several candidates is chosen.
struct ChoiceRules
{
    /// Chooses among the ranked paths; null takes the best-ranked one.
    AQE_I_PathSelector* selector = nullptr;
    RankingCriteria criteria;
    /// The source line that a wrong choice of the selector is reported from.
    int failureLine = 0;
};

/// Gives the chosen path. A single candidate is taken as it is; several are weighed and ranked and
/// put before the selector. There must be a candidate.
///
/// Raises an HBNException when the selector's choice is no position in the list it was given.
[[nodiscard]] std::vector<amd_id> ChoosePath(const CandidatePaths& candidates,
                                             const RefinerServices& services,
                                             const ChoiceRules& rules);

/// Weighs all candidates and gives the positions of the best, ascending: those with the least
/// weight and, among those, the fewest fact tables.
[[nodiscard]] std::vector<std::size_t> ChooseBestPaths(const CandidatePaths& candidates,
                                                       const RefinerServices& services);

} // namespace qe

#endif
