#ifndef TESTS_FUZZ_PLAINGRAPH_H
#define TESTS_FUZZ_PLAINGRAPH_H

#include "amd_id.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace qe::test {

using Ids = std::vector<amd_id>;

/// A graph for a few nodes that is as simple as can be, so that others are measured by it.
class PlainGraph
{
public:
    struct Edge
    {
        amd_id left;
        amd_id right;
        std::int64_t weight = 0;
    };

    void AddNode(const amd_id& node) { mNodes.insert(node); }
    /// Leaves an edge that is there as it is.
    void AddEdge(const amd_id& id, const Edge& edge);
    void SetWeight(const amd_id& id, std::int64_t weight);

    [[nodiscard]] bool HasNode(const amd_id& node) const { return mNodes.count(node) != 0; }
    [[nodiscard]] const Edge* Find(const amd_id& id) const;
    [[nodiscard]] Ids ListEdges() const;

    /// Returns the length of a shortest way; nothing where there is none.
    [[nodiscard]] std::optional<std::int64_t> Distance(const amd_id& from, const amd_id& to) const;
    /// Returns what a minimum spanning tree of the distances between the nodes weighs: no lightest
    /// tree that connects them is heavier. Nothing where they cannot be connected.
    [[nodiscard]] std::optional<std::int64_t> TreeBound(const std::set<amd_id>& nodes) const;

    [[nodiscard]] std::int64_t WeightOf(const Ids& edges) const;
    /// Returns whether the edges alone lead from each of the nodes to each other.
    [[nodiscard]] bool Connects(const Ids& edges, const std::set<amd_id>& nodes) const;
    /// Returns whether an edge closes a ring.
    [[nodiscard]] bool HasRing(const Ids& edges) const;
    /// Returns whether no edge closes a ring and all hang together.
    [[nodiscard]] bool IsTree(const Ids& edges) const;
    /// Returns whether the edges, one after the other, lead from one node to the other.
    [[nodiscard]] bool IsWalk(const Ids& edges, const amd_id& from, const amd_id& to) const;

private:
    using Distances = std::map<amd_id, std::int64_t>;

    /// Returns how far the nodes that can be reached are.
    [[nodiscard]] Distances DistancesFrom(const amd_id& from) const;

    std::set<amd_id> mNodes;
    std::map<amd_id, Edge> mEdges;
};

} // namespace qe::test

#endif
