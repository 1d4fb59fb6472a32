#ifndef PLATFORM_AQE_TORELATIONSHIPJOINCARDINALITYVALUE_H
#define PLATFORM_AQE_TORELATIONSHIPJOINCARDINALITYVALUE_H

#include "AQE_I_QuerySpecJoin.h"
#include "BMT_I_Association.h"
#include "QEENGINE_EXPORT.h"

/// Converts one bound of a query's join to the numbers of model joins. A value that the
/// enumeration does not know becomes CardinalityUnknown.
[[nodiscard]] QEENGINE_EXPORT BMT_I_Association::ECardinality
AQE_ToRelationshipJoinCardinalityValue(AQE_I_QuerySpecJoin::ECardinality cardinality);

#endif
