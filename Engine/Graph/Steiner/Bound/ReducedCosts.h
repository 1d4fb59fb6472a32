#ifndef ENGINE_GRAPH_STEINER_BOUND_REDUCEDCOSTS_H
#define ENGINE_GRAPH_STEINER_BOUND_REDUCEDCOSTS_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Core/Indices.h"

#include <cstddef>
#include <cstdint>

namespace qe::graph {

class DualAscent;
class FlatNetwork;

/// Returns for each node the least reduced weight of a path from the root to it, and kUnreached
/// where that is above `most`. One run of Dijkstra's algorithm as far as that, as below.
[[nodiscard]] NodeDistances GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent,
                                               std::uint64_t most);

/// Returns for each node the least reduced weight of a path from it to the given one, and
/// kUnreached where that is above `most`.
[[nodiscard]] NodeDistances GetReducedTo(const FlatNetwork& network, const DualAscent& ascent,
                                         NodeIndex target, std::uint64_t most);

/// Returns for each node the least reduced weight of a path from it to a terminal that is not the
/// root, and kUnreached where that is above `most`.
[[nodiscard]] NodeDistances GetReducedToTerminal(const FlatNetwork& network,
                                                 const DualAscent& ascent, std::uint64_t most);

class DualAscent;
class FlatNetwork;
class Network;

/// What is known of an edge of a network.
enum class EEdgeStatus : std::uint8_t
{
    Undecided,
    Excluded, ///< It is in no minimum Steiner tree.
    Forced,   ///< It is in every minimum Steiner tree.
};

using EdgeStatuses = IndexedVector<EdgeIndex, EEdgeStatus>;

/// Classifies the edges by a dual ascent and a weight that some tree does not exceed: fixing by
/// reduced costs (Polzin and Vahdati Daneshmand 2001).
///
/// A tree that runs through an edge weighs at least the ascent's bound plus the reduced weight of
/// a path from the root through the edge on to a terminal. Where that is above the given weight,
/// whichever direction the edge is run through, the edge is excluded. And where a terminal can be
/// entered by one edge only, or the root be left by one only, that edge is forced. `statuses` has
/// an entry for each edge; what is decided there stays. Two runs of Dijkstra's algorithm.
void ClassifyEdges(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                   EdgeStatuses& statuses);

/// Removes the excluded edges that are still there from the network that `flat` is a copy of.
/// Returns how many.
std::size_t RemoveExcluded(Network& network, const FlatNetwork& flat, const EdgeStatuses& statuses);

/// Contracts the forced edges in the network that `flat` is a copy of. Edges get new indices then,
/// so the copy no longer fits it.
void ContractForced(Network& network, const FlatNetwork& flat, const EdgeStatuses& statuses);

} // namespace qe::graph

#endif
