#include "AQE_Compatibility.h"

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
