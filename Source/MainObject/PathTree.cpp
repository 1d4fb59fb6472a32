#include "MainObject/PathTree.h"

#include "Rules/Cardinality.h"

#include <algorithm>
#include <limits>
#include <map>

namespace qe {
namespace {

/// Hands out the joins of a path, each of them once.
class JoinSupply
{
public:
    explicit JoinSupply(const PathJoins& joins) : mJoins(joins), mTaken(joins.GetCount()) {}

    /// Takes the first join in path order that has the query subject at an end and has not been
    /// taken yet; null when there is none.
    const PathJoins::Join* TakeJoinAt(const amd_id& subject)
    {
        const std::vector<PathJoins::Position>& positions = mJoins.GetJoinsAt(subject);
        std::size_t& next = mNext[subject];
        while (next < positions.size()) {
            const PathJoins::Position position = positions[next];
            ++next;
            if (!mTaken[position]) {
                mTaken[position] = true;
                return &mJoins.GetJoin(position);
            }
        }
        return nullptr;
    }

private:
    const PathJoins& mJoins;
    std::vector<bool> mTaken;
    std::map<amd_id, std::size_t> mNext;
};

} // namespace

PathTree::PathTree(const amd_id& root, const PathJoins& joins)
{
    JoinSupply supply(joins);
    mNodes.push_back({PathTreeNode::kNoParent, root});
    std::size_t current = 0;
    while (current != PathTreeNode::kNoParent) {
        const amd_id id = mNodes[current].id;
        if (const PathJoins::Join* join = supply.TakeJoinAt(id)) {
            mNodes.push_back({current, id == join->left ? join->right : join->left});
            current = mNodes.size() - 1;
        } else {
            current = mNodes[current].parent;
        }
    }
}

std::set<amd_id> PathTree::GetIds() const
{
    std::set<amd_id> ids;
    for (const PathTreeNode& node : mNodes)
        ids.insert(node.id);
    return ids;
}

std::vector<amd_id> CollectOneToOne(const PathTree& tree, const PathJoins& joins)
{
    const std::vector<PathTreeNode>& nodes = tree.GetNodes();
    std::vector<bool> belongs(nodes.size());
    std::vector<amd_id> collected;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        const PathTreeNode& node = nodes[index];
        if (node.parent == PathTreeNode::kNoParent) {
            belongs[index] = true;
        } else if (belongs[node.parent]) {
            const auto ranges = joins.GetRangesBetween(tree.GetParentId(node), node.id);
            belongs[index] = IsExactlyOne(ranges.first) && IsExactlyOne(ranges.second);
        }
        if (belongs[index])
            collected.push_back(node.id);
    }
    return collected;
}

namespace {

enum class EFactor
{
    Keep,
    Double,
    Halve
};

EFactor GetFactor(const PathJoins::RangePair& ranges, EScoring scoring)
{
    if (scoring == EScoring::FindCandidates && HasManyBound(ranges.first))
        return EFactor::Halve;
    if (HasManyBound(ranges.second))
        return EFactor::Double;
    if (scoring == EScoring::TestWithOptional && IsOptional(ranges.first))
        return EFactor::Double;
    return EFactor::Keep;
}

std::int32_t Apply(EFactor factor, std::int32_t score)
{
    constexpr std::int32_t kLimit = std::numeric_limits<std::int32_t>::max();
    switch (factor) {
    case EFactor::Double:
        return score > kLimit / 2 ? kLimit : score * 2;
    case EFactor::Halve:
        return score / 2;
    case EFactor::Keep:
        break;
    }
    return score;
}

} // namespace

PathTreeScore ScoreTree(const PathTree& tree, const PathJoins& joins, EScoring scoring)
{
    const std::vector<PathTreeNode>& nodes = tree.GetNodes();
    std::vector<std::int32_t> scores(nodes.size(), kRootScore);
    std::vector<std::int32_t> running(nodes.size(), kRootScore);
    PathTreeScore result;
    result.maxScore = kRootScore;
    for (std::size_t index = 1; index < nodes.size(); ++index) {
        const PathTreeNode& node = nodes[index];
        const auto ranges = joins.GetRangesBetween(tree.GetParentId(node), node.id);
        if (HasManyBound(ranges.first) && HasManyBound(ranges.second)) {
            result.metManyToMany = true;
            return result;
        }
        std::int32_t& parentScore = running[node.parent];
        parentScore = Apply(GetFactor(ranges, scoring), parentScore);
        scores[index] = running[index] = parentScore;
        result.maxScore = std::max(result.maxScore, parentScore);
    }
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        if (scores[index] == result.maxScore)
            result.best.insert(nodes[index].id);
    }
    return result;
}

} // namespace qe
