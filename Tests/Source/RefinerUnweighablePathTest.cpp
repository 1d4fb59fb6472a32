// Links a graph of its own in the place of the engine's.

#include "AQE_Governors.h"
#include "AQE_I_Refiner.h"
#include "AQE_I_UndirectedGraph.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "AUT_RefPtr.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using Ids = std::vector<amd_id>;

const Ids kPath{{0, 300005, 1}, {0, 300005, 2}};

/// Finds one path, empty or not, that it cannot weigh.
class WeightlessGraph : public AQE_I_UndirectedGraph
{
public:
    void AddNode(const amd_id& /*node*/) override {}
    void AddEdge(const amd_id& /*edge*/, const amd_id& /*end1*/, const amd_id& /*end2*/,
                 int /*weight*/, int /*flag*/) override
    {}
    void SetEdgeWeight(const amd_id& /*edge*/, int /*weight*/) override {}
    int GetPathWeight(const Ids& /*edges*/) override { return -1; }
    void GetNodeEdges(const amd_id& /*node*/, Ids& /*edges*/) override {}
    void GetEdges(Ids& /*edges*/) override {}
    bool IsConnected() override { return false; }
    void GetShortestPath(const amd_id& /*from*/, const amd_id& /*to*/, Ids& /*edges*/,
                         int& weight) override
    {
        weight = -1;
    }
    void GetMinimumSpanningTree(Ids& /*edges*/, int& /*weight*/) override {}
    void GetShortestPathTree(const Ids& /*nodes*/, Ids& /*nodesOut*/, Ids& /*edgesOut*/,
                             int& /*weight*/) override
    {}
    void GetPaths(std::vector<Ids>& /*paths*/) override {}
    bool GetCheapestTrees(const Ids& nodes, std::vector<Ids>& trees, int& weight) override
    {
        weight = 0;
        trees.push_back(nodes.size() == 2 ? kPath : Ids());
        return true;
    }
    void GetTreeEdges(const Ids& /*nodes*/, Ids& /*edgesOut*/) override {}
};

} // namespace

AUT_RefPtr<AQE_I_UndirectedGraph> AQE_I_UndirectedGraph::Create()
{
    return AUT_RefPtr<AQE_I_UndirectedGraph>(new WeightlessGraph);
}

namespace {

TEST(UnweighablePath, IsAnAnswerUnderGovernorsWhereOnePathIsAsked)
{
    AQE_Governors governors;
    const Ids two{{0, 100, 1}, {0, 100, 2}};
    const Ids three{{0, 100, 1}, {0, 100, 2}, {0, 100, 3}};
    for (AQE_Governors* const given : {&governors, static_cast<AQE_Governors*>(nullptr)}) {
        AQE_RequestContext context;
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        AQE_I_Refiner::QEjoinInfo info;
        for (const amd_id& join : kPath)
            context.GetJoinCache()->CacheJoinInfo(join, info);
        const auto refiner = AQE_I_Refiner::Create(nullptr, nullptr, given, &context, false, false);
        Ids path;
        refiner->ComputeJoinPath(two, {}, {}, two, {}, {}, path);
        EXPECT_EQ(path, given == nullptr ? Ids() : kPath);
        refiner->ComputeJoinPath(three, {}, {}, three, {}, {}, path);
        EXPECT_EQ(path, given == nullptr ? Ids() : kPath) << "an empty path is none";
        EXPECT_EQ(context.GetJoinCache()->GetAllJoinPaths().size(), given == nullptr ? 0U : 1U);

        std::vector<Ids> paths;
        EXPECT_FALSE(refiner->ComputeBestJoinPaths(two, {}, {}, two, {}, paths, {}, {}));
        EXPECT_TRUE(paths.empty());
    }
}

} // namespace
