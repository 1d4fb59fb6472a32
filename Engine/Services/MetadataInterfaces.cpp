#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_QuerySpecJoin.h"
#include "AQE_ToRelationshipJoinCardinalityValue.h"
#include "AUT_RefPtr.h"
#include "amdi_filter.h"
#include "amdi_gateway.h"
#include "amdi_object.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

#include <memory>

// The destructors of the interfaces that callers implement. Defining them here keeps one virtual
// table and one type description of each interface, shared by all modules.
AQE_I_QuerySpecJoin::~AQE_I_QuerySpecJoin() = default;
amdi_filter::~amdi_filter() = default;
amdi_gateway::~amdi_gateway() = default;
amdi_object::~amdi_object() = default;
amdi_relationship::~amdi_relationship() = default;
amdi_relationshipShortcut::~amdi_relationshipShortcut() = default;
amdi_shortcut::~amdi_shortcut() = default;
amdi_specFilter::~amdi_specFilter() = default;

// Queries of this engine name the query subjects and shortcuts of the model themselves, so every
// id stands for itself. A shortcut in particular must stay what it is: the candidate graph has
// its own node for it.
amd_id AQE_Convert2ModelQuerySubjectId(const amd_id& id, amdi_gateway* /*gateway*/)
{
    return id;
}

BMT_I_Association::ECardinality
AQE_ToRelationshipJoinCardinalityValue(AQE_I_QuerySpecJoin::ECardinality cardinality)
{
    switch (cardinality) {
    case AQE_I_QuerySpecJoin::QuerySpecCardinalityZero:
        return BMT_I_Association::CardinalityZero;
    case AQE_I_QuerySpecJoin::QuerySpecCardinalityOne:
        return BMT_I_Association::CardinalityOne;
    case AQE_I_QuerySpecJoin::QuerySpecCardinalityMany:
        return BMT_I_Association::CardinalityMany;
    case AQE_I_QuerySpecJoin::QuerySpecCardinalityUnknown:
        break;
    }
    return BMT_I_Association::CardinalityUnknown;
}

std::int32_t* AUT_RefPtrGetMemory()
{
    return std::allocator<std::int32_t>().allocate(1);
}

void AUT_RefPtrReleaseMemory(std::int32_t* count) noexcept
{
    if (count != nullptr)
        std::allocator<std::int32_t>().deallocate(count, 1);
}
