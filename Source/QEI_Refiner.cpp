#include "AQE_I_Refiner.h"

#include "AQE_Compatibility.h"
#include "AQE_JoinCache.h"
#include "Joins/GatewayCalls.h"
#include "Joins/JoinReader.h"
#include "Joins/UserSettings.h"
#include "Refiner.h"
#include "amdi_filter.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

#include <optional>
#include <set>

template class AUT_RefPtr<AQE_I_Refiner>;

namespace {

template <typename T>
bool ReadFilter(amdi_gateway* gateway, IdClass kind, AQE_I_Refiner::QEFilterInfo& info)
{
    const auto* const filter = qe::LookUp<T>(gateway, info.filterId, kind);
    if (filter == nullptr)
        return false;
    I18NString condition = filter->GetExpressionText();
    info.name = filter->GetName();
    info.expression = condition;
    return true;
}

/// Longer than any path: the distance of what cannot be reached.
constexpr int kUnreachable = 8888;

/// Returns the weight of a type of edge, or nothing when there is no such type.
std::optional<int> FindDefaultWeight(AQE_I_Refiner::EEdgeType type)
{
    switch (type) {
    case AQE_I_Refiner::EdgeTypeRelationship136:
    case AQE_I_Refiner::EdgeTypeShortcut:
        return 2;
    case AQE_I_Refiner::EdgeTypeBothEndsInSet:
        return 3;
    case AQE_I_Refiner::EdgeTypeOneEndInSet:
        return 7;
    case AQE_I_Refiner::EdgeTypeJoin:
        return 17;
    case AQE_I_Refiner::EdgeTypeNone:
        return kUnreachable;
    }
    return std::nullopt;
}

/// The same for every other value of "FFJoins".
std::optional<int> FindOtherWeight(AQE_I_Refiner::EEdgeType type)
{
    switch (type) {
    case AQE_I_Refiner::EdgeTypeRelationship136:
    case AQE_I_Refiner::EdgeTypeShortcut:
        return 1;
    case AQE_I_Refiner::EdgeTypeBothEndsInSet:
        return 2;
    case AQE_I_Refiner::EdgeTypeOneEndInSet:
        return 5;
    case AQE_I_Refiner::EdgeTypeJoin:
        return 11;
    case AQE_I_Refiner::EdgeTypeNone:
        return kUnreachable;
    }
    return std::nullopt;
}

/// Returns what the shortcut finally leads to; the empty id when the chain breaks or is cyclic.
amd_id FollowShortcuts(amdi_gateway* gateway, const amd_id& id, std::vector<amd_id>* shortcuts,
                       std::vector<amd_id>* shortcutParents)
{
    amd_id current = id;
    std::set<amd_id> visited;
    while (current.classCode == IdClassShortcut) {
        const auto* const shortcut = qe::LookUp<amdi_shortcut>(gateway, current, IdClassShortcut);
        if (shortcut == nullptr || !visited.insert(current).second)
            return {};
        if (shortcuts != nullptr)
            shortcuts->push_back(current);
        if (shortcutParents != nullptr)
            shortcutParents->push_back(shortcut->GetParentId());
        current = shortcut->GetReferencedId();
    }
    return current;
}

} // namespace

AQE_I_Refiner::~AQE_I_Refiner() = default;

AUT_RefPtr<AQE_I_Refiner> AQE_I_Refiner::Create(amdi_gateway* gateway,
                                                AQE_I_PathSelector* pathSelector,
                                                AQE_Governors* governors,
                                                AQE_RequestContext* requestContext,
                                                bool useFactTableCount, bool useStraightestPath)
{
    return AUT_RefPtr<AQE_I_Refiner>(new AQE_Refiner(
        gateway, pathSelector, governors, requestContext, useFactTableCount, useStraightestPath));
}

bool AQE_I_Refiner::GetJoinInfo(amdi_gateway* gateway, AQE_RequestContext* context,
                                const amd_id& joinId, QEjoinInfo& info)
{
    if (const AQE_JoinCache* cache = qe::FindJoinCache(context);
        cache != nullptr && cache->GetJoinInfo(joinId, info))
        return true;
    if (!qe::ReadJoin(gateway, joinId, info))
        return false;
    if (AQE_JoinCache* cache = qe::FindJoinCache(context); cache != nullptr)
        cache->CacheJoinInfo(joinId, info);
    return true;
}

int AQE_I_Refiner::GetFFJoinsMode()
{
    return qe::settings::GetFFJoins();
}

int AQE_I_Refiner::GetEdgeWeightForType(EEdgeType type)
{
    const bool isDefault = GetFFJoinsMode() == qe::settings::kFFJoinsAllCandidates;
    const std::optional<int> weight = isDefault ? FindDefaultWeight(type) : FindOtherWeight(type);
    if (!weight)
        qe::RaiseBrokenInvariant(isDefault ? qe::host::kUnknownEdgeTypeByDefault
                                           : qe::host::kUnknownEdgeType);
    return weight.value_or(0);
}

bool AQE_I_Refiner::GetFilterInfo(amdi_gateway* gateway, const amd_id& filterId, QEFilterInfo& info,
                                  const I18NLocale& /*locale*/)
{
    if (filterId.classCode != IdClassFilter && filterId.classCode != IdClassSpecFilter)
        return false;
    info.filterId = filterId;
    return info.filterId.classCode == IdClassSpecFilter
               ? ReadFilter<amdi_specFilter>(gateway, IdClassSpecFilter, info)
               : ReadFilter<amdi_filter>(gateway, IdClassFilter, info);
}

amd_id AQE_I_Refiner::GetRefQuerySubject(amdi_gateway* gateway, const amd_id& id,
                                         std::vector<amd_id>* shortcuts,
                                         std::vector<amd_id>* shortcutParents)
{
    // Nearly all ends of joins are query subjects, and reading a join asks for both.
    if (id.classCode == IdClassQuerySubject)
        return id;
    if (id.classCode != IdClassShortcut)
        return {};
    const amd_id end = FollowShortcuts(gateway, id, shortcuts, shortcutParents);
    return end.classCode == IdClassQuerySubject ? end : amd_id{};
}

void AQE_GetConnectivity()
{}

void AQE_GetPathsBetweenTwoSubjectEntities()
{}

void AQE_GetPathsBetweenTwoSubjectEntities_2_0()
{}

bool AQE_IsObjectConnected()
{
    return false;
}
