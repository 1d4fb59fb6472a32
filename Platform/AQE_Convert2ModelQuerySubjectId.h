#ifndef PLATFORM_AQE_CONVERT2MODELQUERYSUBJECTID_H
#define PLATFORM_AQE_CONVERT2MODELQUERYSUBJECTID_H

#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

class amdi_gateway;

/// Returns the id of the model query subject that a query subject of the query stands for; an id
/// that stands for itself comes back as it is.
[[nodiscard]] QEENGINE_EXPORT amd_id AQE_Convert2ModelQuerySubjectId(const amd_id& id,
                                                                     amdi_gateway* gateway);

#endif
