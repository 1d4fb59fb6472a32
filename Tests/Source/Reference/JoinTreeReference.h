#ifndef TESTS_SOURCE_REFERENCE_JOINTREEREFERENCE_H
#define TESTS_SOURCE_REFERENCE_JOINTREEREFERENCE_H

#include "AQE_I_UndirectedGraph.h"
#include "Tests/Source/Reference/TreeServices.h"

#include <optional>
#include <utility>
#include <vector>

namespace qe::test {

using EndPairs = std::vector<std::pair<amd_id, amd_id>>;

struct TreeLists
{
    /// In the two-set use, the first set.
    Ids subjects{};
    Ids secondSet{};
    Ids favouredJoins{};
    Ids requiredJoins{};
    Ids nodes{};
    Ids joins{};
    /// In the two-set use, both lists of avoided joins.
    Ids avoidedJoins{};
    Ids favouredSubjects{};
};

enum class ETreeUse
{
    Standard,
    /// Finds only the joins that would connect the subjects.
    ConnectivityOnly,
    /// Takes the library's tree of least-weight paths, and reads shortcut joins as well.
    ShortcutAware,
    TwoSet,
};

/// The rules of the join tree, followed step by step, one list at a time, without an index and
/// without a thought for speed. Shortest paths, spanning trees and cheapest trees come from the
/// engine's graph, joins from the refiner's static operations: those have tests of their own.
class JoinTreeReference
{
public:
    JoinTreeReference(const TreeServices& services, const TreeLists& lists, ETreeUse use);

    [[nodiscard]] std::vector<Ids> GetJoinPaths() const;
    [[nodiscard]] int GetPathWeight(const Ids& path) const;
    [[nodiscard]] bool IsConnected() const { return mConnected; }
    [[nodiscard]] Ids GetTreeJoins() const { return EdgesOf(*mTree); }
    [[nodiscard]] const Ids& GetConnectingJoins() const { return mConnectingJoins; }

    /// What the two-set use found. The weight is missing where nothing was searched.
    std::vector<Ids> twoSetPaths;
    EndPairs twoSetPairs;
    std::optional<int> twoSetWeight;

private:
    using JoinInfo = AQE_I_Refiner::QEjoinInfo;

    [[nodiscard]] static Ids EdgesOf(AQE_I_UndirectedGraph& graph);
    [[nodiscard]] std::optional<JoinInfo> Read(const amd_id& join) const;
    [[nodiscard]] int AdjustWeight(const JoinInfo& info) const;

    void Build();
    void LoadCandidateGraph();
    void WeighFavouredJoins();
    void TakeRequiredJoins();
    void AddShortcutJoins();
    void Connect();
    void FindCheapestTrees();
    void SearchBetweenSets();

    TreeServices mServices;
    TreeLists mLists;
    ETreeUse mUse;
    AUT_RefPtr<AQE_I_UndirectedGraph> mGraph = AQE_I_UndirectedGraph::Create();
    AUT_RefPtr<AQE_I_UndirectedGraph> mTree = AQE_I_UndirectedGraph::Create();
    Ids mEntities;
    Ids mConnectingJoins;
    std::vector<Ids> mJoinPaths;
    int mJoinPathsWeight = -1;
    bool mConnected = false;
    bool mNewAlgo = false;
};

} // namespace qe::test

#endif
