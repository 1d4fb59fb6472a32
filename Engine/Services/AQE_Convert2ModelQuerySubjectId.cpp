#include "AQE_Convert2ModelQuerySubjectId.h"

// Queries of this engine name the query subjects and shortcuts of the model themselves, so every
// id stands for itself. A shortcut in particular must stay what it is: the candidate graph has
// its own node for it.
amd_id AQE_Convert2ModelQuerySubjectId(const amd_id& id, amdi_gateway* /*gateway*/)
{
    return id;
}
