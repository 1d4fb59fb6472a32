#ifndef ENGINE_GRAPH_CORE_CONNECTIVITY_H
#define ENGINE_GRAPH_CORE_CONNECTIVITY_H

#include "Engine/Graph/Core/GraphView.h"

namespace qe::graph {

/// Tells whether every node can be reached from every other, by a search from one node:
/// O(n + m). A graph of one node or none is connected.
[[nodiscard]] bool IsConnected(const GraphView& graph);

} // namespace qe::graph

#endif
