#ifndef ENGINE_GRAPH_STEINER_BRANCHREDUCTION_H
#define ENGINE_GRAPH_STEINER_BRANCHREDUCTION_H

#include <cstddef>

namespace qe::graph {

class Network;
class SpecialDistances;

/// Takes out the nodes of few edges at which no lightest tree branches, and puts in edges for the
/// ways through them.
///
/// Where for any three or more edges of a node the special distances of their other ends span
/// these at less weight than the edges, no lightest tree has just these edges there (Duin and
/// Volgenant 1989, with strict comparison). If that holds for all, each lightest tree at most
/// passes through the node: by two edges, unless the special distance of their ends is below
/// their sum. A node goes only when no edges are gained. Answers how many went.
std::size_t BypassBranchless(Network& network, const SpecialDistances& distances);

} // namespace qe::graph

#endif
