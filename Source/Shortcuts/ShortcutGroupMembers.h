#ifndef SOURCE_SHORTCUTS_SHORTCUTGROUPMEMBERS_H
#define SOURCE_SHORTCUTS_SHORTCUTGROUPMEMBERS_H

#include "amd_id.h"

#include <set>
#include <vector>

class amdi_gateway;

namespace qe {

/// Appends the shortcuts of the ordinary kind among the references of one container, in id order.
void CollectGroupMembers(amdi_gateway* gateway, const std::set<amd_id>& references,
                         std::vector<amd_id>& members);

/// Chooses the reference that stands for all of its container: the only one, else the first that
/// is no shortcut (in practice the target), else the shortcut with the least name, the least id
/// among equal names. Shortcuts without an object have no name and come last. `references` is
/// not empty.
[[nodiscard]] amd_id ChooseRepresentative(amdi_gateway* gateway,
                                          const std::set<amd_id>& references);

} // namespace qe

#endif
