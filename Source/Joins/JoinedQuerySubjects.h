#ifndef SOURCE_JOINS_JOINEDQUERYSUBJECTS_H
#define SOURCE_JOINS_JOINEDQUERYSUBJECTS_H

#include "amd_id.h"

#include <set>
#include <vector>

class amdi_gateway;

namespace qe {

/// Gives the ends of the relationships and relationship shortcuts among the joins. A relationship
/// shortcut brings its own ends and, when it stands for a relationship directly, those of the
/// relationship. Joins of any other kind bring none.
[[nodiscard]] std::set<amd_id> CollectJoinEnds(amdi_gateway* gateway,
                                               const std::vector<amd_id>& joins);

} // namespace qe

#endif
