#ifndef SOURCE_JOINS_JOINREADER_H
#define SOURCE_JOINS_JOINREADER_H

#include "AQE_I_Refiner.h"
#include "amd_id.h"

class amdi_gateway;

namespace qe {

/// Reads the join from the gateway into `info`, by its class. Gives false when the class is no
/// class of joins (`info` is then untouched), when there is no such join, or when an end of a
/// relationship leads to no query subject (`info` then lacks the condition).
[[nodiscard]] bool ReadJoin(amdi_gateway* gateway, const amd_id& joinId,
                            AQE_I_Refiner::QEjoinInfo& info);

} // namespace qe

#endif
