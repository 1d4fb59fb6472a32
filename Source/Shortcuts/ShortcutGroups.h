#ifndef SOURCE_SHORTCUTS_SHORTCUTGROUPS_H
#define SOURCE_SHORTCUTS_SHORTCUTGROUPS_H

#include "AQE_I_Refiner.h"
#include "Shortcuts/ShortcutReferences.h"
#include "amd_id.h"

#include <iosfwd>
#include <map>
#include <set>
#include <utility>
#include <vector>

class amdi_gateway;

namespace qe {

/// The groups of shortcuts that stand for one query subject, and the synthetic one-to-one joins
/// within each. A group is known by its key, which is joined to the members and is none itself.
class ShortcutGroups
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    /// Borrows the gateway.
    explicit ShortcutGroups(amdi_gateway* gateway) : mGateway(gateway) {}

    /// Makes one group for each target, which is the key: the members are the shortcuts of the
    /// ordinary kind among its references.
    void GroupByTarget(const ShortcutReferences& references);

    /// Makes one group for each target whose references lie in several parents: one reference
    /// stands for each parent, and the least of them is the key.
    void GroupByParent(const ShortcutReferences& references);

    [[nodiscard]] const std::vector<QEjoinInfo>& GetJoins() const noexcept { return mJoins; }

    /// Returns whether a grouping came to its end, so that keys stay what they are.
    [[nodiscard]] bool IsComplete() const noexcept { return mIsComplete; }

    /// Returns the key of the group that the shortcut is a member of, the least of several; its own
    /// id when there is none. Costs a binary search once the groups are complete, else a walk over
    /// all of them.
    [[nodiscard]] amd_id FindKey(const amd_id& shortcut) const;

    /// Writes one line for each group and one for each synthetic join. Names come from the gateway,
    /// if there is one.
    void Dump(std::ostream& out) const;

private:
    void AddGroup(const amd_id& key, const std::vector<amd_id>& members);
    void Complete();
    void AddJoin(const amd_id& left, const amd_id& right);

    amdi_gateway* mGateway;
    std::map<amd_id, std::set<amd_id>> mGroups;
    /// The members of groups with their keys; in ascending order once the groups are complete, so
    /// that the first of a member counts.
    std::vector<std::pair<amd_id, amd_id>> mKeysOfMembers;
    bool mIsComplete = false;
    std::vector<QEjoinInfo> mJoins;
};

} // namespace qe

#endif
