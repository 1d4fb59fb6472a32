#ifndef SOURCE_JOINTREE_CANDIDATEGRAPH_H
#define SOURCE_JOINTREE_CANDIDATEGRAPH_H

#include "AQE_I_UndirectedGraph.h"
#include "JoinTree/CandidateShelf.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace qe {

/// The two graphs of a join tree, borrowed.
struct JoinGraphs
{
    /// The candidate nodes and joins.
    AQE_I_UndirectedGraph& full;
    /// What connects the subjects.
    AQE_I_UndirectedGraph& tree;
};

/// Loads the full graph of a join tree with the candidates and sets the weights that a request
/// asks for. The steps are taken in the order in which they stand here: a later weight wins.
///
/// Where the request has a join cache, an operation with the candidates of the one before it goes
/// on with their graph: only the joins that could not be read are asked for again.
class CandidateGraph
{
public:
    using Ids = std::vector<amd_id>;

    /// What is loaded.
    struct Request
    {
        const Ids& nodes;
        const Ids& joins;
        const Ids& requiredJoins;
        /// Whether the synthetic shortcut joins are added later.
        bool hasShortcutJoins;
    };

    /// Borrows the reader and the graph of the tree.
    CandidateGraph(const JoinEndsReader& endsReader, AQE_I_UndirectedGraph& tree);

    /// Makes a graph of the nodes, and of every join that can be read and has both ends among them.
    /// Initialises the shortcut information first.
    void Load(const Request& request);

    [[nodiscard]] const JoinEndsReader& GetEndsReader() const { return mEndsReader; }

    /// Returns the full graph.
    [[nodiscard]] const AUT_RefPtr<AQE_I_UndirectedGraph>& GetGraph() const
    {
        return mLoan.Get().graph;
    }

    /// Makes the joins as cheap as any, synthetic shortcut joins excepted.
    void Favour(const Ids& favouredJoins);

    /// Adds the joins to both graphs, as cheap as any. Appends their ends to `entities`, each once.
    void Require(const Ids& requiredJoins, Ids& entities);

    /// Adds the synthetic shortcut joins.
    void AddShortcutJoins();

    /// Makes the joins as long as the unreachable distance.
    void Avoid(const Ids& avoidedJoins);

    /// Returns the candidates, which must stay on loan as long as their graph is used.
    [[nodiscard]] CandidateLoan TakeLoan() { return std::move(mLoan); }

private:
    [[nodiscard]] bool TakeKept(const Request& request);
    [[nodiscard]] bool StayUnreadable(const Ids& joins) const;
    [[nodiscard]] bool IsUnchanged(const std::shared_ptr<CandidateShelf>& shelf,
                                   std::uint64_t replacedCount) const;
    [[nodiscard]] bool IsGraphUsable(const Request& request) const;
    void RebuildGraph();
    void AdjustWeights();
    void ReadAll(const Request& request);
    void AddEntity(const amd_id& id, Ids& entities);

    const JoinEndsReader& mEndsReader;
    AQE_I_UndirectedGraph& mTree;
    CandidateLoan mLoan;
};

} // namespace qe

#endif
