#ifndef ENGINE_GRAPH_CHEAPESTTREES_H
#define ENGINE_GRAPH_CHEAPESTTREES_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <cstddef>
#include <span>

namespace qe::graph {

/// A user setting of section "JoinGraph", read anew by every search for minimum Steiner trees. A
/// value below the least one counts as that.
struct JoinGraphSetting
{
    const char* key;
    int defaultValue;
    int leastValue = 1;
};

inline constexpr const char* kJoinGraphSection = "JoinGraph";

/// How many trees are listed at most.
inline constexpr JoinGraphSetting kCheapestTreesBound{"CheapestTreesBound", 1000};
/// How many million steps of work one search may take.
inline constexpr JoinGraphSetting kCheapestTreesEffort{"CheapestTreesEffort", 1000};
/// How many megabytes (2^20 bytes) one search may use for its tables and trees.
inline constexpr JoinGraphSetting kCheapestTreesMegabytes{"CheapestTreesMegabytes", 1024};
/// After how many seconds a search is cut short; 0 for never, as then the same request has the same
/// answer on every machine.
inline constexpr JoinGraphSetting kCheapestTreesSeconds{"CheapestTreesSeconds", 0, 0};

/// Returns the limits that the user sets.
[[nodiscard]] SteinerLimits ReadCheapestTreesLimits();

/// Finds the minimum Steiner trees that connect the nodes, within the user's limits. What the
/// limits kept from being listed or proven goes to the log, at its lowest level, with the limit
/// that was hit: how many trees there are, or the weight of the tree that was found and the bound
/// below which there is none.
[[nodiscard]] SteinerResult SearchCheapestTrees(const GraphView& graph,
                                                std::span<const NodeIndex> nodes);

/// Finds one tree that connects the nodes: of least weight, if a share of the user's effort proves
/// it. The log is told nothing.
[[nodiscard]] SteinerResult SearchOneTree(const GraphView& graph, std::span<const NodeIndex> nodes);

/// Writes to the log, at its lowest level, that there are more spanning trees than were listed.
void LogMoreSpanningTrees(std::size_t listed);

} // namespace qe::graph

#endif
