#include "Joins/JoinReader.h"

#include "AQE_I_QuerySpecJoin.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "AQE_ToRelationshipJoinCardinalityValue.h"
#include "Joins/ConditionRewriter.h"
#include "Joins/GatewayCalls.h"
#include "Joins/JoinCacheAccess.h"
#include "Rules/Cardinality.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"

#include <cstdint>
#include <utility>

namespace qe {

namespace {

using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

amd_id Resolve(amdi_gateway* gateway, const amd_id& id)
{
    return AQE_I_Refiner::GetRefQuerySubject(gateway, id, nullptr, nullptr);
}

CardinalityRange ConvertSpecCardinality(const AQE_I_QuerySpecJoin::CardinalityRange& range)
{
    return {AQE_ToRelationshipJoinCardinalityValue(range.minimum),
            AQE_ToRelationshipJoinCardinalityValue(range.maximum)};
}

std::int32_t ConvertRelationship136Cardinality(std::int32_t value)
{
    constexpr std::int32_t kKeptAsItIs = 1;
    switch (value) {
    case kKeptAsItIs:
    case BMT_I_Association::CardinalityZero:
    case BMT_I_Association::CardinalityOne:
    case BMT_I_Association::CardinalityMany:
        return value;
    default:
        return BMT_I_Association::CardinalityUnknown;
    }
}

CardinalityRange ConvertRelationship136Cardinality(const CardinalityRange& range)
{
    return {ConvertRelationship136Cardinality(range.minimum),
            ConvertRelationship136Cardinality(range.maximum)};
}

bool ReadSpecJoin(amdi_gateway* gateway, const amd_id& joinId, QEjoinInfo& info)
{
    const auto* const join = LookUp<AQE_I_QuerySpecJoin>(gateway, joinId, IdClassSpecJoin);
    if (join == nullptr)
        return false;
    info.joinId = joinId;
    info.leftQuerySubject = join->GetLeftId();
    info.rightQuerySubject = join->GetRightId();
    info.weight = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeJoin);
    info.leftCardinality = ConvertSpecCardinality(join->GetLeftCardinality());
    info.rightCardinality = ConvertSpecCardinality(join->GetRightCardinality());
    info.name = join->GetName();
    info.expression = join->GetExpressionText();
    return true;
}

/// Reads a relationship of either kind; the cardinalities come as the object gives them.
bool ReadRelationship(amdi_gateway* gateway, const amd_id& joinId, IdClass kind,
                      AQE_I_Refiner::EEdgeType edgeType, QEjoinInfo& info)
{
    const auto* const relationship = LookUp<amdi_relationship>(gateway, joinId, kind);
    if (relationship == nullptr)
        return false;
    info.joinId = joinId;
    info.leftQuerySubject = relationship->GetLeftId();
    info.rightQuerySubject = relationship->GetRightId();
    info.weight = AQE_I_Refiner::GetEdgeWeightForType(edgeType);
    info.leftCardinality = relationship->GetLeftCardinality();
    info.rightCardinality = relationship->GetRightCardinality();
    if (kind == IdClassRelationship136) {
        info.leftCardinality = ConvertRelationship136Cardinality(info.leftCardinality);
        info.rightCardinality = ConvertRelationship136Cardinality(info.rightCardinality);
    }
    info.name = relationship->GetName();
    const amd_id left = Resolve(gateway, info.leftQuerySubject);
    const amd_id right = Resolve(gateway, info.rightQuerySubject);
    if (!left.IsValid() || !right.IsValid())
        return false;
    info.expression = relationship->GetExpressionText();
    return true;
}

/// Follows a chain of relationship shortcuts to its relationship. The chain must end: no record
/// of what was passed is kept.
const amdi_relationship* FindReferencedRelationship(amdi_gateway* gateway, const amd_id& joinId)
{
    amd_id current = joinId;
    while (current.classCode == IdClassRelationshipShortcut) {
        const auto* const shortcut =
            LookUp<amdi_relationshipShortcut>(gateway, current, IdClassRelationshipShortcut);
        if (shortcut == nullptr)
            return nullptr;
        current = shortcut->GetReferencedId();
    }
    return LookUp<amdi_relationship>(gateway, current, IdClassRelationship);
}

/// Returns whether the shortcut names its ends the other way round than the relationship does. The
/// ends of a self-join cannot be told apart and stay.
bool AreEndsReversed(amdi_gateway* gateway, const amd_id& relationshipLeft,
                     const amd_id& relationshipRight, const QEjoinInfo& shortcutEnds)
{
    const amd_id left = Resolve(gateway, relationshipLeft);
    const amd_id right = Resolve(gateway, relationshipRight);
    if (left == right)
        return false;
    // Both are looked up, so that what the gateway raises at either does not depend on the other.
    const amd_id shortcutLeft = Resolve(gateway, shortcutEnds.leftQuerySubject);
    const amd_id shortcutRight = Resolve(gateway, shortcutEnds.rightQuerySubject);
    return shortcutLeft == right && shortcutRight == left;
}

bool ReadRelationshipShortcut(amdi_gateway* gateway, const amd_id& joinId, QEjoinInfo& info)
{
    const auto* const shortcut =
        LookUp<amdi_relationshipShortcut>(gateway, joinId, IdClassRelationshipShortcut);
    if (shortcut == nullptr)
        return false;
    const amdi_relationship* const relationship = FindReferencedRelationship(gateway, joinId);
    if (relationship == nullptr)
        return false;

    const amd_id relationshipLeft = relationship->GetLeftId();
    const amd_id relationshipRight = relationship->GetRightId();
    info.leftQuerySubject = shortcut->GetLeftId();
    info.rightQuerySubject = shortcut->GetRightId();
    if (AreEndsReversed(gateway, relationshipLeft, relationshipRight, info))
        std::swap(info.leftQuerySubject, info.rightQuerySubject);
    info.joinId = joinId;
    info.weight = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeJoin);
    info.name = shortcut->GetName();
    info.expression = relationship->GetExpressionText();
    // The ends now stand as the relationship has them, and so do its cardinalities.
    info.leftCardinality = relationship->GetLeftCardinality();
    info.rightCardinality = relationship->GetRightCardinality();
    info.expression = ReplaceEndReferences(*gateway,
                                           {.oldLeft = relationshipLeft,
                                            .newLeft = info.leftQuerySubject,
                                            .oldRight = relationshipRight,
                                            .newRight = info.rightQuerySubject},
                                           info.expression);
    return true;
}

template <typename Join>
void AddEnds(const Join& join, std::set<amd_id>& ends)
{
    ends.insert(join.GetLeftId());
    ends.insert(join.GetRightId());
}

/// Adds the ends of a relationship. Returns whether the id names one.
bool AddRelationshipEnds(amdi_gateway* gateway, const amd_id& id, std::set<amd_id>& ends)
{
    const auto* const relationship = LookUp<amdi_relationship>(gateway, id, IdClassRelationship);
    if (relationship == nullptr)
        return false;
    AddEnds(*relationship, ends);
    return true;
}

} // namespace

bool ReadJoin(amdi_gateway* gateway, const amd_id& joinId, QEjoinInfo& info)
{
    switch (joinId.classCode) {
    case IdClassSpecJoin:
        return ReadSpecJoin(gateway, joinId, info);
    case IdClassRelationship:
        return ReadRelationship(gateway, joinId, IdClassRelationship, AQE_I_Refiner::EdgeTypeJoin,
                                info);
    case IdClassRelationshipShortcut:
        return ReadRelationshipShortcut(gateway, joinId, info);
    case IdClassRelationship136:
        return ReadRelationship(gateway, joinId, IdClassRelationship136,
                                AQE_I_Refiner::EdgeTypeRelationship136, info);
    default:
        return false;
    }
}

AQE_JoinCache* FindJoinCache(const AQE_RequestContext* context)
{
    return context == nullptr ? nullptr : context->GetJoinCache();
}

std::optional<WeighedJoin> FindOrReadJoin(amdi_gateway* gateway, AQE_RequestContext* context,
                                          const amd_id& joinId, QEjoinInfo& space)
{
    if (AQE_JoinCache* const cache = FindJoinCache(context); cache != nullptr) {
        if (const auto found = JoinCacheAccess(*cache).Joins().Find(joinId))
            return found;
    }
    if (!ReadJoin(gateway, joinId, space))
        return std::nullopt;
    if (AQE_JoinCache* const cache = FindJoinCache(context); cache != nullptr)
        JoinCacheAccess(*cache).Joins().Keep(joinId, space);
    return WeighedJoin{.ends = {.left = space.leftQuerySubject, .right = space.rightQuerySubject},
                       .weight = space.weight};
}

std::set<amd_id> CollectJoinEnds(amdi_gateway* gateway, const std::vector<amd_id>& joins)
{
    std::set<amd_id> ends;
    for (const amd_id& join : joins) {
        if (AddRelationshipEnds(gateway, join, ends))
            continue;
        const auto* const shortcut =
            LookUp<amdi_relationshipShortcut>(gateway, join, IdClassRelationshipShortcut);
        if (shortcut == nullptr)
            continue;
        AddEnds(*shortcut, ends);
        AddRelationshipEnds(gateway, shortcut->GetReferencedId(), ends);
    }
    return ends;
}

} // namespace qe
