#ifndef ENGINE_GRAPH_STEINER_REDUCE_DEGREEREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_DEGREEREDUCTION_H

#include "Engine/Graph/Steiner/Network/Network.h"

namespace qe::graph {

/// Applies, until nothing changes, what follows from the degrees alone: drops nodes that could
/// only be leaves, makes the two edges of a node that could only be passed through one edge, and
/// contracts the only edge of a terminal. Keeps every minimum Steiner tree. Leaves no edge when
/// one terminal remains. Takes time linear in the network, but for merging parallel edges.
void ReduceDegrees(Network& network);

} // namespace qe::graph

#endif
