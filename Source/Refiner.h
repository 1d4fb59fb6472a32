#ifndef SOURCE_REFINER_H
#define SOURCE_REFINER_H

#include "AQE_I_Refiner.h"
#include "JoinTree/JoinTreeRequest.h"
#include "Joins/JoinInfoReader.h"
#include "Ranking/PathWeigher.h"
#include "amd_id.h"

#include <utility>
#include <vector>

class AQE_JoinCache;

/// The refiner: has a join tree built for each operation, the candidate paths ranked and one or
/// more of them chosen. It keeps nothing between operations but what it was given.
///
/// When an operation ends in an exception, the vectors it appends to are as they were, and those
/// it replaces are as they were or empty.
class AQE_Refiner : public AQE_I_Refiner
{
public:
    using Ids = std::vector<amd_id>;
    using EndPair = std::pair<amd_id, amd_id>;

    /// Borrows all of them; any may be null.
    AQE_Refiner(amdi_gateway* gateway, AQE_I_PathSelector* pathSelector, AQE_Governors* governors,
                AQE_RequestContext* requestContext, bool useFactTableCount,
                bool useStraightestPath);
    ~AQE_Refiner() override;

    void ComputeJoinPath(const Ids& querySubjects, const Ids& favouredJoins,
                         const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                         const Ids& favouredSubjects, Ids& joinPath) override;
    void GetJoinedQuerySubjects(const Ids& querySubjects, const Ids& nodes, const Ids& joins,
                                Ids& joinedQuerySubjects) override;
    void ComputeJoinPathBetween(const Ids& firstSet, const Ids& avoidedJoins, const Ids& secondSet,
                                const Ids& furtherAvoidedJoins, const Ids& favouredJoins,
                                const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                                Ids& joinPath, int& resultWeight, Ids& endPair) override;
    bool ComputeBestJoinPaths(const Ids& querySubjects, const Ids& favouredJoins,
                              const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                              std::vector<Ids>& bestPaths, const Ids& avoidedJoins,
                              const Ids& favouredSubjects) override;
    void ComputeBestJoinPathsBetween(const Ids& firstSet, const Ids& avoidedJoins,
                                     const Ids& secondSet, const Ids& furtherAvoidedJoins,
                                     const Ids& favouredJoins, const Ids& requiredJoins,
                                     const Ids& nodes, const Ids& joins,
                                     std::vector<Ids>& bestPaths, int& resultWeight,
                                     std::vector<EndPair>& endPairs) override;
    void SetShortcutInfo(AQE_I_QuerySubjectShortcutInfo* shortcutInfo) override;
    bool GetJoinTreeJoins(amdi_gateway* gateway, const Ids& querySubjects, const Ids& favouredJoins,
                          const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                          AQE_Governors* governors, AQE_RequestContext* requestContext,
                          const Ids* avoidedJoins, Ids& treeJoins) override;

private:
    [[nodiscard]] AQE_JoinCache* FindJoinCache() const;
    [[nodiscard]] qe::RefinerServices GetServices() const;
    /// Returns the least-weight paths between the two groups and replaces `endPairs` by the ends of
    /// each. Sets `resultWeight` to their weight: to the unreachable distance when there are none,
    /// and to -1 when there was nothing to search.
    [[nodiscard]] qe::CandidatePaths FindPathsBetween(const qe::TwoSetRequest& request,
                                                      int& resultWeight,
                                                      std::vector<EndPair>& endPairs) const;

    amdi_gateway* mGateway;
    AQE_I_PathSelector* mPathSelector;
    bool mUseFactTableCount;
    bool mUseStraightestPath;
    AQE_Governors* mGovernors;
    AQE_RequestContext* mRequestContext;
    AQE_I_QuerySubjectShortcutInfo* mShortcutInfo = nullptr;
};

#endif
