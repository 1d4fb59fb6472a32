#ifndef TESTS_SOURCE_JOINTREEREFERENCE_H
#define TESTS_SOURCE_JOINTREEREFERENCE_H

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_I_UndirectedGraph.h"
#include "AQE_RequestContext.h"
#include "amdi_gateway.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe::test {

using Ids = std::vector<amd_id>;
using EndPairs = std::vector<std::pair<amd_id, amd_id>>;

/// What a join tree borrows; all but the gateway may be null.
struct TreeServices
{
    amdi_gateway* gateway = nullptr;
    AQE_Governors* governors = nullptr;
    AQE_RequestContext* context = nullptr;
    AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr;
};

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
    struct Distance
    {
        amd_id from;
        amd_id to;
        Ids path;
        int weight = 0;
    };

    using JoinInfo = AQE_I_Refiner::QEjoinInfo;
    using Labels = std::map<amd_id, int>;

    [[nodiscard]] static Ids EdgesOf(AQE_I_UndirectedGraph& graph);
    [[nodiscard]] std::optional<JoinInfo> ReadJoin(const amd_id& join, bool useShortcutInfo) const;
    [[nodiscard]] int AdjustWeight(const JoinInfo& info) const;

    void Build();
    void LoadCandidateGraph();
    void WeighFavouredJoins();
    void TakeRequiredJoins();
    void AddShortcutJoins();
    void Connect();

    void GrowPairwise();
    [[nodiscard]] std::vector<Distance> MeasurePairs();
    [[nodiscard]] static bool AreAllLabelled(const Ids& entities, Labels& labels);
    [[nodiscard]] static std::optional<Distance> PickCheapest(const std::vector<Distance>& pending,
                                                              Labels& labels);
    [[nodiscard]] Ids MergePath(const Distance& distance, Labels& labels, int label,
                                const Ids& entities);
    void AddDistances(std::vector<Distance>& pending, Ids& entities, const Ids& newNodes,
                      Labels& labels);
    void CollectSpanningSubjects();
    void CloseTree();

    void GrowByLibrary();
    void FindCheapestTrees();
    void SearchBetweenSets();

    void CheckCrossProduct(const I18NString& names, int line);
    void Warn();
    void RaiseCrossProduct(const I18NString& names, int line);
    [[nodiscard]] I18NString NameOf(const amd_id& id) const;
    [[nodiscard]] I18NString DisplayNamesOf(const Ids& ids) const;

    TreeServices mServices;
    TreeLists mLists;
    ETreeUse mUse;
    AUT_RefPtr<AQE_I_UndirectedGraph> mGraph = AQE_I_UndirectedGraph::Create();
    AUT_RefPtr<AQE_I_UndirectedGraph> mTree = AQE_I_UndirectedGraph::Create();
    Ids mEntities;
    Ids mSpanningSubjects;
    Ids mConnectingJoins;
    std::vector<Ids> mJoinPaths;
    int mJoinPathsWeight = -1;
    bool mConnected = false;
    bool mNewAlgo = false;
};

/// Returns a user setting as it is now.
[[nodiscard]] int ReadSetting(const char* section, const char* key, int defaultValue);

[[nodiscard]] bool Contains(const Ids& ids, const amd_id& id);

} // namespace qe::test

#endif
