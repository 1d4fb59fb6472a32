#ifndef ENGINE_GRAPH_STEINER_REDUCE_DEAREDGEREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_DEAREDGEREDUCTION_H

#include <cstddef>

namespace qe::graph {

class Network;
class SpecialDistances;

/// Removes the edges that weigh more than the special distance of their ends: in a tree, a leg of
/// the way that is lighter takes such an edge's place. Strict, so every lightest tree is kept.
/// Answers how many were removed.
std::size_t RemoveDearEdges(Network& network, const SpecialDistances& distances);

} // namespace qe::graph

#endif
