#include "Tests/Support/SteinerGraphReader.h"

#include <string>

namespace qe::graph {

namespace {

/// Reads a node's number and makes it count from 0.
bool ReadNode(std::istream& text, std::uint32_t nodeCount, NodeIndex& node)
{
    std::uint32_t number = 0;
    if (!(text >> number) || number == 0 || number > nodeCount)
        return false;
    node = {number - 1};
    return true;
}

} // namespace

void SteinerGraph::Freeze(std::uint32_t nodeCount)
{
    firstArc.assign(nodeCount + 1, 0);
    for (const Edge& edge : edges) {
        if (edge.end1 == edge.end2)
            continue;
        ++firstArc[edge.end1.value + 1];
        ++firstArc[edge.end2.value + 1];
    }
    for (std::uint32_t node = 0; node < nodeCount; ++node)
        firstArc[node + 1] += firstArc[node];
    std::vector<std::uint32_t> place(firstArc.begin(), firstArc.end() - 1);
    arcs.resize(firstArc.back());
    for (std::uint32_t index = 0; index < edges.size(); ++index) {
        const Edge& edge = edges[index];
        if (edge.end1 == edge.end2)
            continue;
        arcs[place[edge.end1.value]++] = {edge.end2, {index}};
        arcs[place[edge.end2.value]++] = {edge.end1, {index}};
    }
}

std::optional<SteinerGraph> ReadSteinerGraph(std::istream& text)
{
    SteinerGraph graph;
    std::uint32_t nodeCount = 0;
    std::uint32_t ignored = 0;
    std::string word;
    while (text >> word && word != "EOF") {
        bool isGood = true;
        if (word == "SECTION") {
            isGood = static_cast<bool>(text >> word);
        } else if (word == "Nodes") {
            isGood = static_cast<bool>(text >> nodeCount);
        } else if (word == "Edges" || word == "Terminals") {
            isGood = static_cast<bool>(text >> ignored);
        } else if (word == "E") {
            Edge edge;
            isGood = ReadNode(text, nodeCount, edge.end1) && ReadNode(text, nodeCount, edge.end2) &&
                     text >> edge.weight;
            graph.edges.push_back(edge);
        } else if (word == "T") {
            graph.terminals.emplace_back();
            isGood = ReadNode(text, nodeCount, graph.terminals.back());
        } else {
            isGood = word == "END";
        }
        if (!isGood)
            return std::nullopt;
    }
    if (word != "EOF")
        return std::nullopt;
    graph.Freeze(nodeCount);
    return graph;
}

} // namespace qe::graph
