#ifndef ENGINE_GRAPH_STEINER_BOUNDREDUCTION_H
#define ENGINE_GRAPH_STEINER_BOUNDREDUCTION_H

#include <cstdint>
#include <vector>

namespace qe::graph {

class DualAscent;
class FlatNetwork;

/// Marks the edges that no tree of at most the given weight contains, as a dual ascent proves:
/// a tree that runs through an edge weighs at least its bound plus the reduced weight of a way
/// from the root through the edge on to a terminal. Strict, so every lightest tree is kept when
/// some tree has the given weight.
void MarkDispensable(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                     std::vector<std::uint8_t>& isDispensable);

} // namespace qe::graph

#endif
