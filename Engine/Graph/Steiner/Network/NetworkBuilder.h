#ifndef ENGINE_GRAPH_STEINER_NETWORK_NETWORKBUILDER_H
#define ENGINE_GRAPH_STEINER_NETWORK_NETWORKBUILDER_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// Builds the network that the terminals lie in: their connected component, without the nodes
/// that hang on it by one arc and so on.
///
/// `groups` names for each node the group that it is to be one node with, the smallest node of
/// that group; when it is empty, each node stays alone. Edges inside a group are left out, all
/// others must weigh something. Answers nothing when the terminals are not connected. Takes time
/// linear in the graph.
[[nodiscard]] std::optional<Network> BuildNetwork(const GraphView& graph,
                                                  std::span<const NodeIndex> terminals,
                                                  std::span<const std::uint32_t> groups,
                                                  StrandPool& strands);

} // namespace qe::graph

#endif
