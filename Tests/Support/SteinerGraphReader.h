#ifndef TESTS_SUPPORT_STEINERGRAPHREADER_H
#define TESTS_SUPPORT_STEINERGRAPHREADER_H

#include "Engine/Graph/Core/GraphView.h"

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace qe::graph {

/// A graph read from a file, with its terminals and its compressed adjacency.
struct SteinerGraph
{
    std::vector<Edge> edges;
    std::vector<std::uint32_t> firstArc;
    std::vector<Arc> arcs;
    std::vector<NodeIndex> terminals;

    [[nodiscard]] GraphView View() const { return {edges, firstArc, arcs}; }

    /// Fills the adjacency from the edges.
    void Freeze(std::uint32_t nodeCount);
};

/// Reads sections of lines `E u v w` and `T v`, nodes counted from 1. Returns nothing when the
/// text is cut short, a number is missing or out of range, or a word is unknown.
[[nodiscard]] std::optional<SteinerGraph> ReadSteinerGraph(std::istream& text);

} // namespace qe::graph

#endif
