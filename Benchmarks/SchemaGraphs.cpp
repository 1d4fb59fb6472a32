#include "Benchmarks/SchemaGraphs.h"

#include "Engine/Graph/Core/DisjointSets.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <utility>

namespace qe::graph {

namespace {

/// Draws a number below `count`.
std::uint32_t Draw(std::mt19937& random, std::uint32_t count)
{
    return static_cast<std::uint32_t>(random() % count);
}

/// How often a fact joins one dimension.
enum class ERoles
{
    One,
    Several,
};

/// A tenth of the tables are facts with eight dimensions each, the popular ones more often; every
/// third dimension has a dimension of its own.
std::vector<Edge> DrawFacts(std::uint32_t nodeCount, ERoles roles, std::mt19937& random)
{
    constexpr std::uint32_t kDimensionsOfFact = 8;
    const std::uint32_t facts = nodeCount / 10;
    const std::uint32_t dimensions = nodeCount - facts;
    std::vector<Edge> edges;
    const auto join = [&](std::uint32_t fact, std::uint32_t dimension) {
        const std::uint32_t times = roles == ERoles::One ? 1 : 1 + Draw(random, 3);
        edges.insert(edges.end(), times, {{fact}, {facts + dimension}});
    };
    for (std::uint32_t dimension = 0; dimension < dimensions; ++dimension)
        join(dimension % facts, dimension);
    for (std::uint32_t fact = 0; fact < facts; ++fact) {
        for (std::uint32_t place = 1; place < kDimensionsOfFact; ++place)
            join(fact, Draw(random, 1 + Draw(random, dimensions)));
    }
    for (std::uint32_t dimension = 3; dimension < dimensions; dimension += 3)
        edges.push_back({{facts + dimension}, {facts + Draw(random, dimension)}});
    return edges;
}

/// Returns the nodes of the largest connected part, in ascending order.
std::vector<NodeIndex> FindLargestPart(const std::vector<Edge>& edges, std::uint32_t nodeCount)
{
    DisjointSets parts(nodeCount);
    for (const Edge& edge : edges)
        parts.Unite(edge.end1.value, edge.end2.value);
    std::vector<std::vector<NodeIndex>> members(nodeCount);
    for (std::uint32_t node = 0; node < nodeCount; ++node)
        members[parts.Find(node)].push_back({node});
    return *std::max_element(
        members.begin(), members.end(),
        [](const auto& left, const auto& right) { return left.size() < right.size(); });
}

} // namespace

std::vector<SchemaShape> GetSchemaShapes()
{
    const auto star = [](std::uint32_t nodeCount, std::mt19937&) {
        std::vector<Edge> edges;
        for (std::uint32_t node = 1; node < nodeCount; ++node)
            edges.push_back({{0}, {node}});
        return edges;
    };
    const auto snowflake = [](std::uint32_t nodeCount, std::mt19937& random) {
        std::vector<Edge> edges;
        for (std::uint32_t node = 1; node < nodeCount; ++node) {
            const std::uint32_t parent = (node - 1) / 4;
            edges.push_back({{parent}, {node}});
            // Some outer dimensions are shared by two that are next to each other.
            if (parent > 0 && Draw(random, 10) == 0)
                edges.push_back({{parent - 1}, {node}});
        }
        return edges;
    };
    const auto facts = [](ERoles roles) {
        return [roles](std::uint32_t nodeCount, std::mt19937& random) {
            return DrawFacts(nodeCount, roles, random);
        };
    };
    return {{"star", star},
            {"snowflake", snowflake},
            {"facts", facts(ERoles::One)},
            {"roles", facts(ERoles::Several)}};
}

std::vector<Edge> ReadForeignKeys(std::istream& script)
{
    std::map<std::string, std::uint32_t> tables;
    std::vector<Edge> edges;
    std::uint32_t table = 0;
    for (std::string line; std::getline(script, line);) {
        for (const std::string word : {"CREATE TABLE", "REFERENCES"}) {
            const std::size_t place = line.find(word + " \"");
            if (place == std::string::npos)
                continue;
            const std::size_t start = place + word.size() + 2;
            const std::string name = line.substr(start, line.find('"', start) - start);
            const auto number = static_cast<std::uint32_t>(tables.size());
            const std::uint32_t found = tables.emplace(name, number).first->second;
            if (word == "REFERENCES")
                edges.push_back({{table}, {found}});
            else
                table = found;
        }
    }
    return edges;
}

SteinerGraph MakeSchemaGraph(std::vector<Edge> edges, std::uint32_t terminalCount,
                             std::mt19937& random)
{
    constexpr std::array<std::uint32_t, 4> kWeights{17, 2, 7, 3};
    std::uint32_t nodeCount = 0;
    for (Edge& edge : edges) {
        edge.weight = kWeights[Draw(random, kWeights.size())];
        nodeCount = std::max({nodeCount, edge.end1.value + 1, edge.end2.value + 1});
    }
    SteinerGraph graph;
    graph.terminals = FindLargestPart(edges, nodeCount);
    std::shuffle(graph.terminals.begin(), graph.terminals.end(), random);
    graph.terminals.resize(std::min<std::size_t>(terminalCount, graph.terminals.size()));
    graph.edges = std::move(edges);
    graph.Freeze(nodeCount);
    return graph;
}

SteinerGraph DrawHostileGraph()
{
    constexpr std::uint32_t kNodeCount = 500;
    constexpr std::uint32_t kEdgeCount = 25000;
    std::mt19937 random(7);
    SteinerGraph graph;
    for (std::uint32_t edge = 0; edge < kEdgeCount; ++edge) {
        const std::uint32_t end1 = edge < kNodeCount ? edge : Draw(random, kNodeCount);
        graph.edges.push_back({{end1}, {Draw(random, kNodeCount)}, 1});
    }
    for (std::uint32_t terminal = 0; terminal < 40; ++terminal)
        graph.terminals.push_back({terminal * 5});
    graph.Freeze(kNodeCount);
    return graph;
}

} // namespace qe::graph
