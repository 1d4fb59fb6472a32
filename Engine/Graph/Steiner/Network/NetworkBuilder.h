#ifndef ENGINE_GRAPH_STEINER_NETWORK_NETWORKBUILDER_H
#define ENGINE_GRAPH_STEINER_NETWORK_NETWORKBUILDER_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <optional>
#include <span>

namespace qe::graph {

/// Builds the network that the terminals lie in: their connected component, without the nodes
/// that hang on it by one arc and so on.
///
/// `components` holds for each node the smallest node of those that it is to be one node with;
/// when it is empty, each node stays alone. Edges inside a component are left out, all others must
/// weigh something. Returns nothing when the terminals, at least one, are not connected. Takes
/// time linear in the graph. The pool must outlive the network.
[[nodiscard]] std::optional<Network>
BuildNetwork(const GraphView& graph, std::span<const NodeIndex> terminals,
             const IndexedVector<NodeIndex, NodeIndex>& components, StrandPool& strands);

} // namespace qe::graph

#endif
