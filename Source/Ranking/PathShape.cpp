#include "Ranking/PathShape.h"

#include "BMT_I_Association.h"
#include "QEFactFinder.h"
#include "Ranking/WrappingArithmetic.h"

#include <map>

namespace qe {

namespace {

constexpr std::int32_t kManyToManyPenalty = 10000;

} // namespace

std::int32_t CountFactTables(const std::vector<amd_id>& path, const JoinInfoReader& joinInfos)
{
    AQE_FactFinder factFinder;
    std::int32_t penalty = 0;
    for (const amd_id& join : path) {
        const auto info = joinInfos.LookUpJoinInfo(join);
        if (!info)
            continue;
        std::int32_t left = info->leftCardinality.maximum;
        std::int32_t right = info->rightCardinality.maximum;
        if (left == BMT_I_Association::CardinalityMany &&
            right == BMT_I_Association::CardinalityMany) {
            // The fact finder takes no many-to-many joins; the penalty speaks for them.
            penalty = AddWrapping(penalty, kManyToManyPenalty);
            left = BMT_I_Association::CardinalityOne;
            right = BMT_I_Association::CardinalityOne;
        }
        factFinder.AddJoin(join, info->leftQuerySubject, left, info->rightQuerySubject, right);
    }
    std::vector<amd_id> facts;
    factFinder.GetFacts(facts);
    return AddWrapping(static_cast<std::int32_t>(facts.size()), penalty);
}

std::int32_t AdjustWeightForStraightness(const std::vector<amd_id>& path, std::int32_t weight,
                                         const JoinInfoReader& joinInfos)
{
    std::map<amd_id, std::int32_t> endCounts;
    for (const amd_id& join : path) {
        if (const auto info = joinInfos.LookUpJoinInfo(join)) {
            ++endCounts[info->leftQuerySubject];
            ++endCounts[info->rightQuerySubject];
        }
    }
    for (const auto& subject : endCounts) {
        if (subject.second > 2)
            weight = AddWrapping(weight, subject.second - 2);
    }
    return weight;
}

PathSignature GetPathSignature(const std::vector<amd_id>& path, const JoinInfoReader& joinInfos)
{
    PathSignature signature;
    for (const amd_id& join : path) {
        const auto info = joinInfos.LookUpJoinInfo(join);
        signature.insert(info ? info->name : I18NString("Dummy"));
    }
    return signature;
}

} // namespace qe
