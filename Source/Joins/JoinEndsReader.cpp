#include "Joins/JoinEndsReader.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "IdClass.h"

namespace qe {

JoinEndsReader::JoinEndsReader(amdi_gateway* gateway, AQE_RequestContext* requestContext,
                               AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                               const std::set<amd_id>& favouredSubjects)
    : mGateway(gateway),
      mRequestContext(requestContext),
      mShortcutInfo(shortcutInfo),
      mFavouredSubjects(favouredSubjects)
{}

std::optional<JoinEnds> JoinEndsReader::GetJoinEnds(const amd_id& join,
                                                    EShortcutUse shortcutUse) const
{
    const auto read = Read(join, shortcutUse);
    if (!read)
        return std::nullopt;
    return read->ends;
}

std::optional<WeighedJoin> JoinEndsReader::GetWeighedJoin(const amd_id& join,
                                                          EShortcutUse shortcutUse) const
{
    auto read = Read(join, shortcutUse);
    if (read)
        read->weight = AdjustJoinWeight(read->ends, read->weight);
    return read;
}

std::optional<WeighedJoin> JoinEndsReader::Read(const amd_id& join, EShortcutUse shortcutUse) const
{
    AQE_I_Refiner::QEjoinInfo info;
    bool known = AQE_I_Refiner::GetJoinInfo(mGateway, mRequestContext, join, info);
    if (!known && shortcutUse == EShortcutUse::Consult && mShortcutInfo != nullptr)
        known = mShortcutInfo->GetJoinInfo(join, info);
    if (!known)
        return std::nullopt;
    return WeighedJoin{{info.leftQuerySubject, info.rightQuerySubject}, info.weight};
}

int JoinEndsReader::AdjustJoinWeight(const JoinEnds& ends, int weight) const
{
    const int bothEndsWeight =
        AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeBothEndsInSet);
    if (weight <= bothEndsWeight || mFavouredSubjects.empty())
        return weight;
    bool left = IsFavoured(ends.left);
    bool right = IsFavoured(ends.right);
    // What a shortcut stands for counts only when neither end is favoured as it stands.
    if (!left && !right) {
        left = StandsForFavoured(ends.left);
        right = StandsForFavoured(ends.right);
    }
    if (left && right)
        return bothEndsWeight;
    if (left || right)
        return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeOneEndInSet);
    return weight;
}

bool JoinEndsReader::IsFavoured(const amd_id& end) const
{
    return mFavouredSubjects.count(end) != 0;
}

bool JoinEndsReader::StandsForFavoured(const amd_id& end) const
{
    return end.classCode == IdClassShortcut &&
           IsFavoured(AQE_I_Refiner::GetRefQuerySubject(mGateway, end, nullptr, nullptr));
}

} // namespace qe
