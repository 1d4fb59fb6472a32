#ifndef ENGINE_GRAPH_STEINER_REDUCE_NEARESTNODEREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_NEARESTNODEREDUCTION_H

#include <cstddef>

namespace qe::graph {

class Network;
class SpecialDistances;

/// Contracts the lightest edge of a terminal where it, with the way on to another terminal, weighs
/// less than the terminal's next edge (nearest vertex test of Duin and Volgenant 1989): every
/// lightest tree contains it then. Answers how many were contracted.
std::size_t ContractNearest(Network& network, const SpecialDistances& distances);

} // namespace qe::graph

#endif
