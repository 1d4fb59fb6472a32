#ifndef ENGINE_GRAPH_STEINER_BLOCKSTAGES_H
#define ENGINE_GRAPH_STEINER_BLOCKSTAGES_H

#include "Engine/Graph/Steiner/BlockSearch.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace qe::graph {

class Budget;

/// Which reductions a network is worth.
enum class EReductions
{
    Degrees,
    Distances,
};

/// A network that still is to be searched, and a weight that some tree of it does not exceed.
struct OpenNetwork
{
    Network network;
    std::uint64_t knownWeight;
    /// How often its block was looked at before.
    std::size_t round = 0;
    EReductions reductions = EReductions::Degrees;
    /// What of its fixed strands is in the family already.
    std::size_t takenStrands = 0;
    std::uint64_t takenWeight = 0;
};

/// The search of one block, stage by stage, from what costs least to what costs most, until one
/// of them solves the block, or shrinks it so much that reductions may find more.
class BlockStages
{
public:
    /// Takes a network that is one block. Keeps references to all three.
    BlockStages(OpenNetwork& block, TreeFamily& family, Budget& budget);

    /// Adds all minimum Steiner trees of the block to the family, or one when the budget runs out,
    /// and returns what is known then. Returns nothing when the block has shrunk instead: then it
    /// is to be reduced and searched anew, and the family is as it was.
    std::optional<BlockSearch::Outcome> Run();

private:
    /// What a stage leaves of the block.
    enum class EState
    {
        Solved, ///< mOutcome tells what was found.
        Shrunk, ///< It is best reduced and begun anew.
        Open,   ///< The next stage goes on.
    };
    EState SpanTerminals();
    EState PruneQuickly();
    EState SearchBySmallTable();
    EState SearchQuickly();
    EState SearchByTable();
    EState PruneThoroughly();
    EState SearchWithMoreEffort();
    EState TryDistanceReductions();
    EState SearchToTheEnd();

    [[nodiscard]] EState Conclude(const std::optional<BlockSearch::Outcome>& outcome);
    [[nodiscard]] EState GetStateAfterPruning();
    [[nodiscard]] bool IsWorthReducing(std::size_t pruned, std::size_t edgesBefore);
    void PrepareNextRound();

    OpenNetwork& mBlock;
    TreeFamily& mFamily;
    Budget& mBudget;
    std::optional<BlockSearch> mSearch;
    std::size_t mEdgesBefore;
    std::size_t mPruned = 0;
    std::optional<BlockSearch::Outcome> mOutcome;
};

} // namespace qe::graph

#endif
