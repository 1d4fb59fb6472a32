#ifndef SOURCE_RANKING_FOLDERDISTANCE_H
#define SOURCE_RANKING_FOLDERDISTANCE_H

#include "amd_id.h"

class AQE_RequestContext;
class amdi_gateway;

namespace qe {

/// Returns how far a relationship or relationship shortcut lies from the query subjects it joins:
/// the mean of the distances of its folder to their folders, rounded down. 0 when they share a
/// folder, and also when the join is of another class or something cannot be found.
///
/// The distance of two folders is twice the number of steps from each up to the nearest folder
/// that encloses both; unrelated folders have distance 0.
[[nodiscard]] int FolderDistance(const amd_id& joinId, amdi_gateway* gateway,
                                 AQE_RequestContext* requestContext);

} // namespace qe

#endif
