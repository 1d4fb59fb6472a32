#ifndef ENGINE_GRAPH_STEINER_BOUND_REDUCEDCOSTFIXING_H
#define ENGINE_GRAPH_STEINER_BOUND_REDUCEDCOSTFIXING_H

#include "Engine/Graph/Core/Indices.h"

#include <cstddef>
#include <cstdint>

namespace qe::graph {

class DualAscent;
class FlatNetwork;
class Network;

/// What is known of the edges of a network, by their indices.
struct EdgeVerdicts
{
    /// The edges that are in no lightest tree.
    IndexedVector<EdgeIndex, std::uint8_t> isExcluded;
    /// The edges that are in every lightest tree.
    IndexedVector<EdgeIndex, std::uint8_t> isForced;
};

/// Judges the edges by a dual ascent and a weight that some tree has.
///
/// A tree that runs through an edge weighs at least the ascent's bound plus the reduced weight of
/// a way from the root through the edge on to a terminal. Where that is above the given weight,
/// whichever way the edge is run through, the edge is excluded. And where a terminal can be
/// entered by one edge only, or the root be left by one only, that edge is forced.
void ClassifyEdges(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                   EdgeVerdicts& verdicts);

/// Removes the excluded edges that are still there from the network that `flat` is a copy of.
/// Answers how many.
std::size_t RemoveExcluded(Network& network, const FlatNetwork& flat, const EdgeVerdicts& verdicts);

/// Contracts the forced edges in the network that `flat` is a copy of. Edges get new indices then,
/// so the copy no longer fits it.
void ContractForced(Network& network, const FlatNetwork& flat, const EdgeVerdicts& verdicts);

} // namespace qe::graph

#endif
