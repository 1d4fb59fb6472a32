#include "Facts/FactQueries.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
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

void DumpGraph(const FactGraph& graph, std::ostream& out)
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

void DumpFactList(const FactGraph& graph, std::ostream& out)
{
    out << "Facts:" << std::endl;
    std::vector<amd_id> facts;
    AppendFacts(graph, facts);
    for (const amd_id& fact : facts) {
        // Every fact line shows the same unset pair; the trees above name the facts.
        out << "    " << ToText(amd_id{}) << std::endl;
        std::vector<amd_id> dimensions;
        AppendDimensions(graph, fact, EDimensions::All, dimensions);
        out << "    -->";
        for (const amd_id& dimension : dimensions)
            out << ' ' << ToText(dimension);
        out << std::endl;
    }
}

void DumpSharedDimensions(const FactGraph& graph, std::ostream& out)
{
    out << "Shared Dimensions:" << std::endl;
    std::vector<amd_id> dimensions;
    AppendSharedDimensions(graph, dimensions);
    for (const amd_id& dimension : dimensions)
        out << "    " << ToText(dimension) << std::endl;
}

} // namespace

void AppendDimensions(const FactGraph& graph, const amd_id& subject, EDimensions which,
                      std::vector<amd_id>& dimensions)
{
    const FactNode* const node = graph.Find(subject);
    if (node == nullptr)
        return;
    for (const FactNode* const child : node->mChildren) {
        for (const amd_id& dimension : child->mIds) {
            if (std::find(dimensions.begin(), dimensions.end(), dimension) != dimensions.end())
                continue;
            dimensions.push_back(dimension);
            if (which == EDimensions::All)
                AppendDimensions(graph, dimension, which, dimensions);
        }
    }
}

void AppendFacts(const FactGraph& graph, std::vector<amd_id>& facts)
{
    for (const FactNode* const root : graph.GetRoots())
        facts.push_back(root->mIds.front());
}

void AppendSharedDimensions(const FactGraph& graph, std::vector<amd_id>& dimensions)
{
    std::vector<amd_id> facts;
    AppendFacts(graph, facts);
    if (facts.empty())
        return;
    if (facts.size() == 1) {
        // What everything shares when there is a single fact is the fact itself.
        dimensions.push_back(facts.front());
        return;
    }
    AppendDimensions(graph, facts.front(), EDimensions::All, dimensions);
    std::sort(dimensions.begin(), dimensions.end());
    for (auto fact = std::next(facts.begin()); fact != facts.end(); ++fact) {
        std::vector<amd_id> further;
        AppendDimensions(graph, *fact, EDimensions::All, further);
        std::sort(further.begin(), further.end());
        std::vector<amd_id> common;
        std::set_intersection(dimensions.begin(), dimensions.end(), further.begin(), further.end(),
                              std::back_inserter(common));
        dimensions.swap(common);
    }
}

void DumpFacts(const FactGraph& graph, std::ostream& out)
{
    DumpGraph(graph, out);
    DumpFactList(graph, out);
    DumpSharedDimensions(graph, out);
}

} // namespace qe
