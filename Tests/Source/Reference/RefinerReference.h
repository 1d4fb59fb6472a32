#ifndef TESTS_SOURCE_REFERENCE_REFINERREFERENCE_H
#define TESTS_SOURCE_REFERENCE_REFINERREFERENCE_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_Refiner.h"
#include "Tests/Source/Reference/JoinTreeReference.h"

#include <set>
#include <utility>
#include <vector>

namespace qe::test {

/// Which criteria rank paths, beside their weight.
struct RankingSwitches
{
    bool facts = false;
    bool straight = false;
};

/// The rules of a request and of the ranking of its paths, followed step by step on join trees of
/// the same make. The selector, the join cache, the fact finder and the folder distance are the
/// library's: those have tests of their own.
class RefinerReference : public AQE_I_Refiner
{
public:
    RefinerReference(const TreeServices& services, AQE_I_PathSelector* selector,
                     RankingSwitches switches)
        : mServices(services), mSelector(selector), mSwitches(switches)
    {}

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
                                     EndPairs& endPairs) override;
    void SetShortcutInfo(AQE_I_QuerySubjectShortcutInfo* shortcutInfo) override
    {
        mServices.shortcutInfo = shortcutInfo;
    }
    bool GetJoinTreeJoins(amdi_gateway* gateway, const Ids& querySubjects, const Ids& favouredJoins,
                          const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                          AQE_Governors* governors, AQE_RequestContext* requestContext,
                          const Ids* avoidedJoins, Ids& treeJoins) override;

private:
    using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;

    [[nodiscard]] bool LookUpJoinInfo(const amd_id& join, QEjoinInfo& info) const;
    [[nodiscard]] Ids Readable(const Ids& path) const;
    void CollectEnds(const amd_id& join, std::set<amd_id>& ends) const;

    [[nodiscard]] int Weigh(const JoinTreeReference& tree, const Ids& path,
                            const TreeLists& lists) const;
    [[nodiscard]] int CountFactTables(const Ids& path) const;
    [[nodiscard]] int CountBranches(const Ids& path) const;
    [[nodiscard]] std::set<I18NString> NamesOf(const Ids& path) const;
    [[nodiscard]] Descriptors Rank(const std::vector<Ids>& paths, const std::vector<int>& weights,
                                   RankingSwitches switches) const;
    [[nodiscard]] Ids Choose(const JoinTreeReference& tree, const std::vector<Ids>& paths,
                             const TreeLists& lists, RankingSwitches switches, int line) const;
    [[nodiscard]] std::vector<std::size_t> SelectBest(const JoinTreeReference& tree,
                                                      const std::vector<Ids>& paths,
                                                      const TreeLists& lists) const;

    TreeServices mServices;
    AQE_I_PathSelector* mSelector;
    RankingSwitches mSwitches;
};

} // namespace qe::test

#endif
