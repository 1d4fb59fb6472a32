#include "Joins/JoinedQuerySubjects.h"

#include "Joins/TypedLookup.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"

namespace qe {

namespace {

template <typename Join>
void AddEnds(const Join& join, std::set<amd_id>& ends)
{
    ends.insert(join.GetLeftId());
    ends.insert(join.GetRightId());
}

/// Adds the ends of a relationship and tells whether the id names one.
bool AddRelationshipEnds(amdi_gateway* gateway, const amd_id& id, std::set<amd_id>& ends)
{
    const auto* const relationship = LookUp<amdi_relationship>(gateway, id, IdClassRelationship);
    if (relationship == nullptr)
        return false;
    AddEnds(*relationship, ends);
    return true;
}

} // namespace

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
