#include "MainObject/PathJoins.h"

#include "AQE_I_Refiner.h"
#include "Joins/GatewayCalls.h"
#include "Rules/Cardinality.h"

#include <algorithm>

namespace qe {

PathJoins::PathJoins(amdi_gateway* gateway, AQE_RequestContext* requestContext,
                     const std::vector<amd_id>& path)
    : mGateway(gateway), mRequestContext(requestContext)
{
    for (const amd_id& join : path) {
        AQE_I_Refiner::QEjoinInfo info;
        if (!AQE_I_Refiner::GetJoinInfo(gateway, requestContext, join, info))
            continue;
        const amd_id& left = info.leftQuerySubject;
        const amd_id& right = info.rightQuerySubject;
        const Position position = mJoins.size();
        mJoins.push_back({join, left, right});
        mJoinsBySubject[left].push_back(position);
        if (left != right)
            mJoinsBySubject[right].push_back(position);
        mJoinByEnds.emplace(std::minmax(left, right), position);
    }
}

const std::vector<PathJoins::Position>& PathJoins::GetJoinsAt(const amd_id& subject) const
{
    static const std::vector<Position> none;
    const auto found = mJoinsBySubject.find(subject);
    return found == mJoinsBySubject.end() ? none : found->second;
}

bool PathJoins::HasNoOptionalEnd(const amd_id& subject) const
{
    const std::vector<Position>& positions = GetJoinsAt(subject);
    return std::none_of(positions.begin(), positions.end(), [&](Position position) {
        return IsOptional(GetEndCardinality(mJoins[position].id, subject));
    });
}

PathJoins::RangePair PathJoins::GetRangesBetween(const amd_id& first, const amd_id& second) const
{
    const amd_id join = FindJoinBetween(first, second);
    return {GetEndCardinality(join, first), GetEndCardinality(join, second)};
}

amd_id PathJoins::FindJoinBetween(const amd_id& first, const amd_id& second) const
{
    const auto found = mJoinByEnds.find(std::minmax(first, second));
    return found == mJoinByEnds.end() ? amd_id() : mJoins[found->second].id;
}

PathJoins::Range PathJoins::GetEndCardinality(const amd_id& join, const amd_id& end) const
{
    AQE_I_Refiner::QEjoinInfo info;
    const bool isKnown = AQE_I_Refiner::GetJoinInfo(mGateway, mRequestContext, join, info);
    if (isKnown && end == info.leftQuerySubject)
        return info.leftCardinality;
    if (isKnown && end == info.rightQuerySubject)
        return info.rightCardinality;
    RaiseBrokenInvariant(host::kMissingJoinOfPath);
    return {};
}

} // namespace qe
