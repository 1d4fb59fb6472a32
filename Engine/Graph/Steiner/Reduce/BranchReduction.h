#ifndef ENGINE_GRAPH_STEINER_REDUCE_BRANCHREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_BRANCHREDUCTION_H

#include <cstddef>

namespace qe::graph {

class Network;
class SpecialDistances;

/// Takes out the nodes with three edges at which no lightest tree branches, and puts in edges for
/// the ways through them.
///
/// Where the special distances of the three other ends span these at less weight than the edges,
/// a lightest tree at most passes through the node (Duin and Volgenant 1989, with strict
/// comparison): by two edges, unless the special distance of their ends is below their sum.
/// Answers how many nodes went.
std::size_t BypassBranchless(Network& network, const SpecialDistances& distances);

} // namespace qe::graph

#endif
