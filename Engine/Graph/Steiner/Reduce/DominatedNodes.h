#ifndef ENGINE_GRAPH_STEINER_REDUCE_DOMINATEDNODES_H
#define ENGINE_GRAPH_STEINER_REDUCE_DOMINATEDNODES_H

#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstddef>

namespace qe::graph {

/// Takes the edges from every node that is no terminal and whose neighbours are joined to each
/// other by edges not heavier than the heavier of the two by which they are joined to it. Returns
/// how many such nodes there were.
///
/// No minimum Steiner tree holds such a node: where it has edges to some of its neighbours, the
/// one with the lightest edge can be joined to the others instead, each by an edge not heavier than
/// theirs, which spares the lightest. So a fact goes that is joined to roles of one dimension which
/// are joined among themselves. Looks at the neighbours with the fewest edges first, so that a node
/// costs little unless it is dominated: O(m) for all but dense parts.
std::size_t RemoveDominatedNodes(Network& network);

} // namespace qe::graph

#endif
