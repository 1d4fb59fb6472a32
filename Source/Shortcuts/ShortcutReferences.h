#ifndef SOURCE_SHORTCUTS_SHORTCUTREFERENCES_H
#define SOURCE_SHORTCUTS_SHORTCUTREFERENCES_H

#include "amd_id.h"

#include <map>
#include <set>

class amdi_gateway;

namespace qe {

/// What refers to which query subject (the target), and in which container each reference lies.
///
/// Filled with the shortcuts of a request first and with its real joins then; after
/// consolidation, references that are joined to each other across containers count as lying in
/// one container.
class ShortcutReferences
{
public:
    /// The references to one target by container: the target itself and shortcuts to it.
    using Containers = std::map<amd_id, std::set<amd_id>>;

    /// Takes in a shortcut, its target and every shortcut on the way there. A shortcut that leads
    /// to no query subject, or to one without an object, is left out.
    void RegisterShortcut(amdi_gateway* gateway, const amd_id& shortcut);

    /// Takes in a real join between `left` and `right`. It counts when both refer to one target
    /// from different containers.
    void RecordJoinedReferences(const amd_id& left, const amd_id& right);

    /// Moves, for every target, the shortcuts that are joined across containers into one
    /// container: the target's own when the target is joined too, otherwise the least one among
    /// theirs. Containers that this empties disappear.
    void ConsolidateJoinedReferences();

    /// Gives the references of each target.
    [[nodiscard]] const std::map<amd_id, Containers>& GetByTarget() const noexcept
    {
        return mReferencesByTarget;
    }

    /// Forgets everything.
    void Clear() noexcept;

private:
    struct ShortcutRecord
    {
        amd_id shortcutContainer;
        amd_id target;
        amd_id targetContainer;
    };

    void ConsolidateJoinedReferences(Containers& containers, const std::set<amd_id>& joined);
    [[nodiscard]] amd_id ChooseContainer(const std::set<amd_id>& joined);

    std::map<amd_id, Containers> mReferencesByTarget;
    std::map<amd_id, ShortcutRecord> mShortcutRecords;
    /// The references to each target that real joins connect across containers.
    std::map<amd_id, std::set<amd_id>> mJoinedReferences;
};

} // namespace qe

#endif
