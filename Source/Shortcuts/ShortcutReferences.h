#ifndef SOURCE_SHORTCUTS_SHORTCUTREFERENCES_H
#define SOURCE_SHORTCUTS_SHORTCUTREFERENCES_H

#include "amd_id.h"

#include <map>
#include <set>

class amdi_gateway;

namespace qe {

/// What refers to which query subject (the target), and in which parent each reference lies.
///
/// Filled with the shortcuts of a request first and with its real joins then; after
/// consolidation, references that are joined to each other across parents count as lying in
/// one parent.
class ShortcutReferences
{
public:
    /// The references to one target by the parent in which they lie: the target itself and
    /// shortcuts to it.
    using ReferencesByParent = std::map<amd_id, std::set<amd_id>>;

    /// Records a shortcut, its target and every shortcut on the path there. A shortcut that leads
    /// to no query subject, or to one without an object, is left out.
    void RegisterShortcut(amdi_gateway* gateway, const amd_id& shortcut);

    /// Records a real join between `left` and `right`. It counts when both refer to one target
    /// from different parents.
    void RecordJoinedReferences(const amd_id& left, const amd_id& right);

    /// Moves, for every target, the shortcuts that are joined across parents into one
    /// parent: the target's own when the target is joined too, otherwise the least one among
    /// theirs. Parents that this empties disappear.
    void ConsolidateJoinedReferences();

    /// Returns the references of each target.
    [[nodiscard]] const std::map<amd_id, ReferencesByParent>& GetByTarget() const noexcept
    {
        return mReferencesByTarget;
    }

    /// Forgets everything.
    void Clear() noexcept;

private:
    struct ShortcutRecord
    {
        amd_id shortcutParent;
        amd_id target;
        amd_id targetParent;
    };

    void ConsolidateJoinedReferences(ReferencesByParent& parents, const std::set<amd_id>& joined);
    [[nodiscard]] amd_id ChooseParent(const std::set<amd_id>& joined);

    std::map<amd_id, ReferencesByParent> mReferencesByTarget;
    std::map<amd_id, ShortcutRecord> mShortcutRecords;
    /// The references to each target that real joins connect across parents.
    std::map<amd_id, std::set<amd_id>> mJoinedReferences;
};

} // namespace qe

#endif
