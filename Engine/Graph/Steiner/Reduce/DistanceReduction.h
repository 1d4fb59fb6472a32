#ifndef ENGINE_GRAPH_STEINER_REDUCE_DISTANCEREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_DISTANCEREDUCTION_H

#include <cstddef>

namespace qe::graph {

class Budget;
class Network;
class SpecialDistances;

/// Applies, until little changes or the budget runs out, what follows from distances and degrees:
/// the tests below and ReduceDegrees. Keeps every minimum Steiner tree.
void ReduceByDistances(Network& network, Budget& budget);

/// The long-edge test: removes the edges that weigh more than the special distance of their ends.
/// In a tree, a leg of the lighter path takes such an edge's place (Duin and Volgenant 1989, with
/// strict comparison, so that every minimum Steiner tree is kept). Returns how many were removed.
std::size_t RemoveLongEdges(Network& network, const SpecialDistances& distances);

/// The degree-3 test: takes out the nodes with three edges at which no minimum Steiner tree
/// branches, and puts in edges for the paths through them.
///
/// Where the special distances of the three neighbours span these at less weight than the edges, a
/// minimum Steiner tree at most passes through the node (Duin and Volgenant 1989, with strict
/// comparison): by two edges, unless the special distance of their ends is below their sum.
/// Returns how many nodes went.
std::size_t BypassDegreeThreeNodes(Network& network, const SpecialDistances& distances);

/// The nearest-vertex test: contracts the lightest edge of a terminal where it, with the path on
/// to another terminal, weighs less than the terminal's next edge (Duin and Volgenant 1989). Every
/// minimum Steiner tree contains it then. Returns how many were contracted.
std::size_t ContractNearestVertices(Network& network, const SpecialDistances& distances);

} // namespace qe::graph

#endif
