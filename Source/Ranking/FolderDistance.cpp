#include "Ranking/FolderDistance.h"

#include "AQE_I_Refiner.h"
#include "Joins/GatewayCalls.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace qe {

namespace {

using FolderChain = std::vector<amd_id>;

/// Lists the folder and those around it, innermost first; empty when the id is no folder.
FolderChain GetFolderChain(const amd_id& id, amdi_gateway* gateway)
{
    FolderChain chain;
    std::set<amd_id> visited;
    amd_id current = id;
    while (const auto* const folder = LookUp<amdi_object>(gateway, current, IdClassFolder)) {
        // Folders that enclose each other have no top; the walk ends where it came by before.
        if (!visited.insert(current).second)
            break;
        chain.push_back(current);
        current = folder->GetParentId();
    }
    return chain;
}

int ToDistance(std::size_t steps)
{
    return static_cast<int>(2 * steps);
}

std::optional<int> GetDistanceWithin(const FolderChain& chain, const amd_id& folder)
{
    const auto position = std::find(chain.begin(), chain.end(), folder);
    if (position == chain.end())
        return std::nullopt;
    return ToDistance(static_cast<std::size_t>(position - chain.begin()));
}

int Distance(const amd_id& from, const amd_id& to, amdi_gateway* gateway)
{
    const FolderChain toChain = GetFolderChain(to, gateway);
    if (const auto distance = GetDistanceWithin(toChain, from))
        return *distance;
    const FolderChain fromChain = GetFolderChain(from, gateway);
    if (const auto distance = GetDistanceWithin(fromChain, to))
        return *distance;

    std::map<amd_id, std::size_t> fromPositions;
    for (std::size_t position = 0; position < fromChain.size(); ++position)
        fromPositions.emplace(fromChain[position], position);
    for (std::size_t position = 0; position < toChain.size(); ++position) {
        const auto common = fromPositions.find(toChain[position]);
        if (common != fromPositions.end())
            return ToDistance(position + common->second);
    }
    return 0;
}

const amdi_object* FindJoinObject(const amd_id& joinId, amdi_gateway* gateway)
{
    switch (joinId.classCode) {
    case IdClassRelationship:
        return LookUp<amdi_relationship>(gateway, joinId, IdClassRelationship);
    case IdClassRelationshipShortcut:
        return LookUp<amdi_relationshipShortcut>(gateway, joinId, IdClassRelationshipShortcut);
    default:
        return nullptr;
    }
}

} // namespace

int FolderDistance(const amd_id& joinId, amdi_gateway* gateway, AQE_RequestContext* requestContext)
{
    const amdi_object* const join = FindJoinObject(joinId, gateway);
    if (join == nullptr)
        return 0;
    const amd_id joinFolder = join->GetParentId();

    AQE_I_Refiner::QEjoinInfo info;
    if (!AQE_I_Refiner::GetJoinInfo(gateway, requestContext, joinId, info))
        info = {};
    const amdi_object* const left = gateway->GetObject(info.leftQuerySubject);
    const amdi_object* const right = gateway->GetObject(info.rightQuerySubject);
    if (left == nullptr || right == nullptr)
        return 0;

    const amd_id leftFolder = left->GetParentId();
    const amd_id rightFolder = right->GetParentId();
    if (joinFolder == leftFolder && leftFolder == rightFolder)
        return 0;
    return (Distance(joinFolder, leftFolder, gateway) +
            Distance(joinFolder, rightFolder, gateway)) /
           2;
}

} // namespace qe
