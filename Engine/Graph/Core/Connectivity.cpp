#include "Engine/Graph/Core/Connectivity.h"

#include <cstddef>
#include <vector>

namespace qe::graph {

bool IsConnected(const GraphView& graph)
{
    if (graph.GetNodeCount() == 0)
        return true;
    std::vector<bool> isReached(graph.GetNodeCount(), false);
    std::vector<NodeIndex> reached{NodeIndex{0}};
    isReached[0] = true;
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (const Arc& arc : graph.GetArcs(reached[next])) {
            if (isReached[arc.target.value])
                continue;
            isReached[arc.target.value] = true;
            reached.push_back(arc.target);
        }
    }
    return reached.size() == graph.GetNodeCount();
}

} // namespace qe::graph
