#include "AQE_ToRelationshipJoinCardinalityValue.h"

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
