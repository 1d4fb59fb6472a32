#ifndef INCLUDE_AQE_COMPATIBILITY_H
#define INCLUDE_AQE_COMPATIBILITY_H

#include "QEREFINER_EXPORT.h"

/// Entry points that older engines look up by name. They have no effect and are kept so that the
/// look-up succeeds; AQE_I_Refiner does the work.
extern "C" {

QEREFINER_EXPORT void AQE_GetConnectivity();
QEREFINER_EXPORT void AQE_GetPathsBetweenTwoSubjectEntities();
QEREFINER_EXPORT void AQE_GetPathsBetweenTwoSubjectEntities_2_0();

/// Returns false.
QEREFINER_EXPORT bool AQE_IsObjectConnected();
}

#endif
