#ifndef SOURCE_SHORTCUTS_SHORTCUTGROUPDUMP_H
#define SOURCE_SHORTCUTS_SHORTCUTGROUPDUMP_H

#include "AQE_I_Refiner.h"
#include "amd_id.h"

#include <iosfwd>
#include <map>
#include <set>
#include <vector>

class amdi_gateway;

namespace qe {

/// Writes one line for each group. Names come from the gateway, which may be null.
void DumpShortcutGroups(amdi_gateway* gateway, const std::map<amd_id, std::set<amd_id>>& groups,
                        std::ostream& out);

/// Writes one line for each synthetic join. Names come from the gateway, which may be null.
void DumpShortcutJoins(amdi_gateway* gateway, const std::vector<AQE_I_Refiner::QEjoinInfo>& joins,
                       std::ostream& out);

} // namespace qe

#endif
