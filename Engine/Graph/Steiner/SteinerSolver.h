#ifndef ENGINE_GRAPH_STEINER_STEINERSOLVER_H
#define ENGINE_GRAPH_STEINER_STEINERSOLVER_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Budget.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// What is known of the weight that a search returns.
enum class EProof
{
    Optimal,   ///< No tree is lighter.
    BestFound, ///< The budget ran out: the optimum lies between lower bound and weight.
};

/// What is known of the number of trees that a search returns.
enum class ECount
{
    Exact,   ///< There are exactly so many.
    AtLeast, ///< There are so many or more: the budget ran out, or 64 bits are too few.
};

/// The result of one search for the minimum Steiner trees that connect given nodes.
struct SteinerResult
{
    /// False when no tree connects the terminals; everything else is empty then.
    bool connected = false;
    /// Weight of every listed tree.
    std::uint64_t weight = 0;
    /// No tree is lighter than this; equal to the weight when that is proven.
    std::uint64_t lowerBound = 0;
    /// Number of trees of that weight, listed or not; at most 2^64 - 1.
    std::uint64_t count = 0;
    EProof proof = EProof::Optimal;
    ECount countProof = ECount::Exact;
    /// The limit that kept weight, count or list from being complete; the first, if several did.
    ELimit limit = ELimit::None;
    /// Steps of work that were spent.
    std::uint64_t steps = 0;
    /// The trees, each as its edges in ascending order.
    std::vector<std::vector<EdgeIndex>> trees;
};

/// Finds all minimum Steiner trees of a multigraph: all trees of least weight that connect the
/// terminals.
///
/// A tree is a connected set of edges without a cycle that touches every terminal and whose
/// leaves are all terminals. Parallel edges give different trees, self-loops are in none. Edges
/// of weight 0 are in a tree only where the leaves demand it, so the trees stay finitely many,
/// but every choice of edges of weight 0 is a tree of its own.
///
/// Terminals may repeat and stand in any order: a node counts once, and neither which trees are
/// listed nor their order depends on it. One distinct terminal is connected by the empty tree of
/// weight 0, and so is none. A terminal that is no node of the graph cannot be connected.
///
/// Trees are listed by number of edges, then by their ascending edge indices compared one after
/// the other. When there are more than `maximumTrees`, those listed are a fixed choice among
/// them, in that order too; the choice depends on graph, terminals and limit only.
///
/// Within the limits the result is exact, as long as no block of the graph has more than 512
/// terminals (ELimit::Terminals). When they are exceeded during the search of a block, one tree of
/// it is returned, found by a heuristic improved by local search, as EProof::BestFound with the
/// best lower bound that was proven (EProof::Optimal when the two meet); parallel edges and other
/// blocks can make several trees of it. When they are exceeded while
/// counting or listing, the weight stays proven, fewer trees may be listed than asked for, and
/// the count is ECount::AtLeast. When one tree is wanted (EAnswer::OneTree), only a share of the
/// effort goes into proving that none is lighter.
///
/// The result depends on graph, terminals and limits only, as long as the limits set no time. No
/// limit is overshot by more than a tenth, except that the graph is looked at once and one tree
/// found in any case.
///
/// Throws std::bad_alloc only; keeps nothing between calls, so any number of threads may search
/// graphs that do not change.
[[nodiscard]] SteinerResult FindCheapestTrees(const GraphView& graph,
                                              std::span<const NodeIndex> terminals,
                                              const SteinerLimits& limits);

} // namespace qe::graph

#endif
