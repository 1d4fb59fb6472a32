#include "Joins/JoinInfoReader.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "IdClass.h"

#include <algorithm>
#include <iterator>

namespace qe {

namespace {

bool Read(const RefinerServices& services, const amd_id& joinId, AQE_I_Refiner::QEjoinInfo& info)
{
    if (joinId.classCode != IdClassShortcutJoin)
        return AQE_I_Refiner::GetJoinInfo(services.gateway, services.requestContext, joinId, info);
    return services.shortcutInfo != nullptr && services.shortcutInfo->GetJoinInfo(joinId, info);
}

} // namespace

JoinInfoReader::JoinInfoReader(const RefinerServices& services) : mServices(services)
{}

std::optional<AQE_I_Refiner::QEjoinInfo> JoinInfoReader::LookUpJoinInfo(const amd_id& joinId) const
{
    std::optional<AQE_I_Refiner::QEjoinInfo> info(std::in_place);
    if (!Read(mServices, joinId, *info))
        info.reset();
    return info;
}

std::vector<amd_id> JoinInfoReader::KeepReadableJoins(const std::vector<amd_id>& path) const
{
    std::vector<amd_id> readable;
    std::copy_if(path.begin(), path.end(), std::back_inserter(readable),
                 [this](const amd_id& join) { return LookUpJoinInfo(join).has_value(); });
    return readable;
}

} // namespace qe
