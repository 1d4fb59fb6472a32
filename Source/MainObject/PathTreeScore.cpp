#include "MainObject/PathTreeScore.h"

#include "Rules/Cardinality.h"

#include <algorithm>
#include <limits>

namespace qe {

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
