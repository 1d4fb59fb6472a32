#ifndef ENGINE_GRAPH_CHEAPESTTREES_H
#define ENGINE_GRAPH_CHEAPESTTREES_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <cstddef>
#include <span>

namespace qe::graph {

/// What a search for the cheapest trees may list and spend when the user sets nothing else.
constexpr int CheapestTreesBound = 1000;
constexpr int CheapestTreesSeconds = 10;
constexpr int CheapestTreesMegabytes = 1024;

/// Reads the user's limits: section "JoinGraph", keys "CheapestTreesBound",
/// "CheapestTreesSeconds" and "CheapestTreesMegabytes". A value below 1 counts as 1.
[[nodiscard]] SteinerLimits ReadCheapestTreesLimits();

/// Finds the cheapest trees that connect the nodes, within the user's limits. Trees that the
/// limits kept from being listed or proven are told through the log, at its lowest level: how
/// many there are, or the weight of the tree that was found and the bound below which there is
/// none.
[[nodiscard]] SteinerResult SearchCheapestTrees(const GraphView& graph,
                                                std::span<const NodeIndex> nodes);

} // namespace qe::graph

#endif
