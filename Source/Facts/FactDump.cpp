#include "Facts/FactDump.h"

#include "Rules/FactGraph.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace qe {
namespace {

void PrintIds(const FactNode& node, std::ostream& out)
{
    out << "Id(s): ";
    for (const amd_id& id : node.mIds)
        out << ' ' << ToText(id);
    out << std::endl;
}

/// Prints `node` below the nodes of `path`, the last of which is its parent.
void PrintTree(const FactNode& node, std::vector<const FactNode*>& path, std::ostream& out)
{
    for (std::size_t depth = 0; depth < path.size(); ++depth)
        out << "    ";
    PrintIds(node, out);
    if (std::find(path.begin(), path.end(), &node) != path.end())
        return;
    path.push_back(&node);
    for (const FactNode* const child : node.mChildren)
        PrintTree(*child, path, out);
    path.pop_back();
}

} // namespace

void DumpFactGraph(const FactGraph& graph, std::ostream& out)
{
    out << "Nodes:" << std::endl;
    for (const auto& [id, node] : graph.GetNodesById()) {
        out << ToText(id) << " --> ";
        PrintIds(*node, out);
    }
    for (const FactNode* const root : graph.GetRoots()) {
        out << "FactRoot:" << std::endl;
        std::vector<const FactNode*> path;
        PrintTree(*root, path, out);
    }
}

} // namespace qe
