#ifndef ENGINE_GRAPH_CHEAPESTTREES_H
#define ENGINE_GRAPH_CHEAPESTTREES_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <span>

namespace qe::graph {

/// A user setting of section "JoinGraph", read anew by every search for minimum Steiner trees. A
/// value below 1 counts as 1.
struct JoinGraphSetting
{
    const char* key;
    int defaultValue;
};

inline constexpr const char* kJoinGraphSection = "JoinGraph";

/// How many trees are listed at most.
inline constexpr JoinGraphSetting kCheapestTreesBound{"CheapestTreesBound", 1000};
/// How many seconds one search may take.
inline constexpr JoinGraphSetting kCheapestTreesSeconds{"CheapestTreesSeconds", 10};
/// How many megabytes (2^20 bytes) one search may use for its tables.
inline constexpr JoinGraphSetting kCheapestTreesMegabytes{"CheapestTreesMegabytes", 1024};

/// Returns the limits that the user sets.
[[nodiscard]] SteinerLimits ReadCheapestTreesLimits();

/// Finds the minimum Steiner trees that connect the nodes, within the user's limits. What the
/// limits kept from being listed or proven goes to the log, at its lowest level: how many trees
/// there are, or the weight of the tree that was found and the bound below which there is none.
[[nodiscard]] SteinerResult SearchCheapestTrees(const GraphView& graph,
                                                std::span<const NodeIndex> nodes);

} // namespace qe::graph

#endif
