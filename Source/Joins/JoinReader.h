#ifndef SOURCE_JOINS_JOINREADER_H
#define SOURCE_JOINS_JOINREADER_H

#include "AQE_I_Refiner.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <optional>
#include <set>
#include <vector>

class AQE_JoinCache;
class AQE_RequestContext;
class amdi_gateway;

namespace qe {

/// Reads the join from the gateway into `info`, by its class. Returns false when the class is no
/// class of joins (`info` is then untouched), when there is no such join, or when an end of a
/// relationship leads to no query subject (`info` then lacks the condition).
[[nodiscard]] bool ReadJoin(amdi_gateway* gateway, const amd_id& joinId,
                            AQE_I_Refiner::QEjoinInfo& info);

/// Returns the join cache of the request; null when it has none, or there is no request.
[[nodiscard]] AQE_JoinCache* FindJoinCache(const AQE_RequestContext* context);

/// Returns the ends and the weight of the join from the request's join cache or, when it is not
/// there, as AQE_I_Refiner's GetJoinInfo reads it; nothing when it cannot be read. `space` is what
/// it is read into.
[[nodiscard]] std::optional<WeighedJoin> FindOrReadJoin(amdi_gateway* gateway,
                                                        AQE_RequestContext* context,
                                                        const amd_id& joinId,
                                                        AQE_I_Refiner::QEjoinInfo& space);

/// Returns the ends of the relationships and relationship shortcuts among the joins. A relationship
/// shortcut brings its own ends and, when it stands for a relationship directly, those of the
/// relationship. Joins of any other kind bring none.
[[nodiscard]] std::set<amd_id> CollectJoinEnds(amdi_gateway* gateway,
                                               const std::vector<amd_id>& joins);

} // namespace qe

#endif
