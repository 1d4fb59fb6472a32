#ifndef ENGINE_GRAPH_STEINER_REDUCE_DISTANCEREDUCTION_H
#define ENGINE_GRAPH_STEINER_REDUCE_DISTANCEREDUCTION_H

namespace qe::graph {

class Budget;
class Network;

/// Applies, until little changes or the budget runs out, what follows from distances and degrees:
/// drops edges with a lighter way around, bypasses nodes at which no lightest tree branches, and
/// contracts edges that every lightest tree contains. Keeps every lightest tree.
void ReduceByDistances(Network& network, Budget& budget);

} // namespace qe::graph

#endif
