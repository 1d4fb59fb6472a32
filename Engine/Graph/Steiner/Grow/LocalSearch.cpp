#include "Engine/Graph/Steiner/Grow/LocalSearch.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

LocalSearch::LocalSearch(const FlatNetwork& network, TreeGrower& grower)
    : mNetwork(network), mGrower(grower), mEdgesAt(network.GetNodeCount())
{}

void LocalSearch::Improve(SteinerTree& tree, const std::function<bool()>& isOver)
{
    for (bool isImproved = true; isImproved;) {
        isImproved = false;
        CutIntoPaths(tree);
        for (std::uint32_t path = 0; path < mPathEnds.size(); ++path) {
            if (isOver())
                return;
            if (TryWithout(tree, {}, path)) {
                isImproved = true;
                CutIntoPaths(tree);
            }
        }
        const std::vector<NodeIndex> nodes = mTreeNodes;
        for (const NodeIndex node : nodes) {
            if (isOver())
                return;
            if (IsKey(node) && !mNetwork.IsTerminal(node) && TryWithout(tree, node, kNoIndex)) {
                isImproved = true;
                CutIntoPaths(tree);
            }
        }
    }
}

bool LocalSearch::IsKey(NodeIndex node) const
{
    return mEdgesAt[node].size() > 2 || (mNetwork.IsTerminal(node) && !mEdgesAt[node].empty());
}

void LocalSearch::CutIntoPaths(const SteinerTree& tree)
{
    for (const NodeIndex node : mTreeNodes)
        mEdgesAt[node].clear();
    mTreeNodes.clear();
    for (std::uint32_t place = 0; place < tree.edges.size(); ++place) {
        for (const NodeIndex node : mNetwork.GetEnds(tree.edges[place])) {
            if (mEdgesAt[node].empty())
                mTreeNodes.push_back(node);
            mEdgesAt[node].push_back(place);
        }
    }
    std::sort(mTreeNodes.begin(), mTreeNodes.end());
    mPathOfEdge.assign(tree.edges.size(), kNoIndex);
    mPathEnds.clear();
    for (const NodeIndex node : mTreeNodes) {
        for (const std::uint32_t place : mEdgesAt[node]) {
            if (IsKey(node) && mPathOfEdge[place] == kNoIndex)
                WalkPath(tree, node, place);
        }
    }
}

/// Follows the path that leaves the key node by the edge at that place, up to the next key node.
void LocalSearch::WalkPath(const SteinerTree& tree, NodeIndex node, std::uint32_t place)
{
    const auto path = static_cast<std::uint32_t>(mPathEnds.size());
    const NodeIndex start = node;
    for (;;) {
        mPathOfEdge[place] = path;
        const auto [end1, end2] = mNetwork.GetEnds(tree.edges[place]);
        node = end1 == node ? end2 : end1;
        if (IsKey(node))
            break;
        place = mEdgesAt[node][mEdgesAt[node][0] == place ? 1 : 0];
    }
    mPathEnds.emplace_back(start, node);
}

/// Takes the path out of the tree, or all paths at the key node when that is valid, and grows a
/// tree around the rest. Returns true and replaces the tree when that is lighter.
bool LocalSearch::TryWithout(SteinerTree& tree, NodeIndex key, std::uint32_t path)
{
    mKept.clear();
    mStarts.clear();
    mIsKept.assign(tree.edges.size(), 0);
    for (std::uint32_t place = 0; place < tree.edges.size(); ++place) {
        const std::uint32_t ofEdge = mPathOfEdge[place];
        const auto [end1, end2] = mPathEnds[ofEdge];
        if (ofEdge != path && end1 != key && end2 != key) {
            mKept.push_back(tree.edges[place]);
            mIsKept[place] = 1;
            continue;
        }
        for (const NodeIndex end : {end1, end2}) {
            if (end != key)
                mStarts.push_back(end);
        }
    }
    SteinerTree other = mGrower.Regrow(mKept, ChooseStart(tree));
    if (other.weight >= tree.weight)
        return false;
    tree = std::move(other);
    return true;
}

/// Returns the start in the smallest part: the search for another path spreads least from there.
NodeIndex LocalSearch::ChooseStart(const SteinerTree& tree)
{
    std::sort(mStarts.begin(), mStarts.end());
    mStarts.erase(std::unique(mStarts.begin(), mStarts.end()), mStarts.end());
    NodeIndex best = mStarts.front();
    std::size_t least = tree.edges.size() + 1;
    for (const NodeIndex start : mStarts) {
        const std::size_t size = CountPart(tree, start, least);
        if (size < least) {
            least = size;
            best = start;
        }
    }
    return best;
}

/// Returns how many kept edges are connected to the node, or at least `most` when there are more.
std::size_t LocalSearch::CountPart(const SteinerTree& tree, NodeIndex start, std::size_t most)
{
    std::size_t count = 0;
    mOpen.assign(1, {start, kNoIndex});
    while (!mOpen.empty() && count < most) {
        const auto [node, entry] = mOpen.back();
        mOpen.pop_back();
        for (const std::uint32_t place : mEdgesAt[node]) {
            if (mIsKept[place] == 0 || place == entry)
                continue;
            const auto [end1, end2] = mNetwork.GetEnds(tree.edges[place]);
            mOpen.emplace_back(end1 == node ? end2 : end1, place);
            ++count;
        }
    }
    return count;
}

} // namespace qe::graph
