#include "Rules/JoinEnds.h"

#include "IdClass.h"

namespace qe {
namespace {

bool IsFavoured(const amd_id& end, const FavouredSubjects& favoured)
{
    return favoured.ids.count(end) != 0;
}

bool StandsForFavoured(const amd_id& end, const FavouredSubjects& favoured)
{
    return end.classCode == IdClassShortcut && IsFavoured(favoured.resolve(end), favoured);
}

} // namespace

int AdjustJoinWeight(const WeighedJoin& join, const FavouredSubjects& favoured,
                     const FavouredWeights& weights)
{
    if (join.weight <= weights.bothEnds || favoured.ids.empty())
        return join.weight;
    bool left = IsFavoured(join.ends.left, favoured);
    bool right = IsFavoured(join.ends.right, favoured);
    if (!left && !right) {
        left = StandsForFavoured(join.ends.left, favoured);
        right = StandsForFavoured(join.ends.right, favoured);
    }
    if (left && right)
        return weights.bothEnds;
    return left || right ? weights.oneEnd : join.weight;
}

} // namespace qe
