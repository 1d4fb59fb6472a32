#include "Tests/Fuzz/PlainGraph.h"

#include <algorithm>

namespace qe::test {

namespace {

/// Which nodes the edges seen so far lead between.
class Parts
{
public:
    [[nodiscard]] amd_id PartOf(const amd_id& node)
    {
        const auto found = mParts.emplace(node, node).first;
        return found->second;
    }

    /// Returns whether the two were apart.
    bool Unite(const amd_id& left, const amd_id& right)
    {
        const amd_id kept = PartOf(left);
        const amd_id given = PartOf(right);
        for (auto& [node, part] : mParts) {
            if (part == given)
                part = kept;
        }
        return kept != given;
    }

private:
    std::map<amd_id, amd_id> mParts;
};

} // namespace

void PlainGraph::AddEdge(const amd_id& id, const Edge& edge)
{
    AddNode(edge.left);
    AddNode(edge.right);
    mEdges.emplace(id, edge);
}

void PlainGraph::SetWeight(const amd_id& id, std::int64_t weight)
{
    if (const auto found = mEdges.find(id); found != mEdges.end())
        found->second.weight = weight;
}

const PlainGraph::Edge* PlainGraph::Find(const amd_id& id) const
{
    const auto found = mEdges.find(id);
    return found == mEdges.end() ? nullptr : &found->second;
}

Ids PlainGraph::ListEdges() const
{
    Ids edges;
    for (const auto& [id, edge] : mEdges)
        edges.push_back(id);
    return edges;
}

PlainGraph::Distances PlainGraph::DistancesFrom(const amd_id& from) const
{
    Distances distances;
    if (!HasNode(from))
        return distances;
    distances[from] = 0;
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (const auto& [id, edge] : mEdges) {
            for (const auto& [near, far] :
                 {std::pair(edge.left, edge.right), std::pair(edge.right, edge.left)}) {
                const auto known = distances.find(near);
                if (known == distances.end())
                    continue;
                const std::int64_t distance = known->second + edge.weight;
                const auto [there, isNew] = distances.emplace(far, distance);
                isChanged = isChanged || isNew || distance < there->second;
                there->second = std::min(there->second, distance);
            }
        }
    }
    return distances;
}

std::optional<std::int64_t> PlainGraph::Distance(const amd_id& from, const amd_id& to) const
{
    const Distances distances = DistancesFrom(from);
    const auto found = distances.find(to);
    return found == distances.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::int64_t> PlainGraph::TreeBound(const std::set<amd_id>& nodes) const
{
    std::int64_t bound = 0;
    std::set<amd_id> missing = nodes;
    // How far each node is from the tree that grows.
    Distances distances{{*missing.begin(), 0}};
    while (!missing.empty()) {
        const amd_id* nearest = nullptr;
        for (const amd_id& node : missing) {
            if (distances.count(node) != 0 &&
                (nearest == nullptr || distances.at(node) < distances.at(*nearest)))
                nearest = &node;
        }
        if (nearest == nullptr || !HasNode(*nearest))
            return std::nullopt;
        bound += distances.at(*nearest);
        for (const auto& [node, distance] : DistancesFrom(*nearest)) {
            const auto there = distances.emplace(node, distance).first;
            there->second = std::min(there->second, distance);
        }
        missing.erase(amd_id(*nearest));
    }
    return bound;
}

std::int64_t PlainGraph::WeightOf(const Ids& edges) const
{
    std::int64_t weight = 0;
    for (const amd_id& id : edges)
        weight += mEdges.at(id).weight;
    return weight;
}

bool PlainGraph::Connects(const Ids& edges, const std::set<amd_id>& nodes) const
{
    Parts parts;
    for (const amd_id& id : edges)
        parts.Unite(mEdges.at(id).left, mEdges.at(id).right);
    return std::all_of(nodes.begin(), nodes.end(), [&](const amd_id& node) {
        return parts.PartOf(node) == parts.PartOf(*nodes.begin());
    });
}

bool PlainGraph::HasRing(const Ids& edges) const
{
    Parts parts;
    return !std::all_of(edges.begin(), edges.end(), [&](const amd_id& id) {
        return parts.Unite(mEdges.at(id).left, mEdges.at(id).right);
    });
}

bool PlainGraph::IsTree(const Ids& edges) const
{
    std::set<amd_id> touched;
    for (const amd_id& id : edges)
        touched.insert({mEdges.at(id).left, mEdges.at(id).right});
    return !HasRing(edges) && Connects(edges, touched);
}

bool PlainGraph::IsWalk(const Ids& edges, const amd_id& from, const amd_id& to) const
{
    amd_id at = from;
    for (const amd_id& id : edges) {
        const Edge& edge = mEdges.at(id);
        if (edge.left != at && edge.right != at)
            return false;
        at = edge.left == at ? edge.right : edge.left;
    }
    return at == to;
}

} // namespace qe::test
