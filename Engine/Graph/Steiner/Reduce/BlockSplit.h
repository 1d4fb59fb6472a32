#ifndef ENGINE_GRAPH_STEINER_REDUCE_BLOCKSPLIT_H
#define ENGINE_GRAPH_STEINER_REDUCE_BLOCKSPLIT_H

#include "Engine/Graph/Steiner/Network/Network.h"

#include <vector>

namespace qe::graph {

/// Splits a network into its biconnected blocks, with cut nodes between terminals as terminals.
///
/// Each minimum Steiner tree of the network is one minimum Steiner tree of every block, in any
/// combination. Blocks without a terminal beyond their cut node are dropped. The blocks have their
/// nodes numbered anew in ascending order and no fixed strands; they share the network's pool.
/// Returns them in a fixed order. Hopcroft and Tarjan (1973), linear time.
[[nodiscard]] std::vector<Network> SplitIntoBlocks(const Network& network);

} // namespace qe::graph

#endif
