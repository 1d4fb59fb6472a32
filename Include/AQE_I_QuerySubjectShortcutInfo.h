#ifndef INCLUDE_AQE_I_QUERYSUBJECTSHORTCUTINFO_H
#define INCLUDE_AQE_I_QUERYSUBJECTSHORTCUTINFO_H

#include "AQE_I_Refiner.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <iosfwd>
#include <vector>

/// Knows which shortcuts of a request may be treated as the same thing.
///
/// Shortcuts that stand for one query subject form groups, either by what they stand for or by
/// where they are kept (the governor `shortcutGrouping`). Between the members of a group stand
/// synthetic one-to-one joins of class 700001, over which the join graph passes from a shortcut
/// to what it stands for.
class QEREFINER_EXPORT AQE_I_QuerySubjectShortcutInfo
{
public:
    virtual ~AQE_I_QuerySubjectShortcutInfo();

    /// Makes an object without groups, or returns null when there is no memory for it. The caller
    /// owns it and deletes it. The arguments are borrowed and must outlive it; `context` may be
    /// null, `governors` must not be null when Initialize is called.
    [[nodiscard]] static AQE_I_QuerySubjectShortcutInfo*
    Create(amdi_gateway* gateway, AQE_Governors* governors, AQE_RequestContext* context);

    /// Builds the groups of the shortcuts among `querySubjects`, and their synthetic joins. The
    /// real joins of the two lists decide which references belong together. The number of
    /// synthetic joins grows with the square of the size of a group. Only the first call
    /// builds; later ones do nothing, also after one that ended in an exception while building.
    virtual void Initialize(const std::vector<amd_id>& querySubjects,
                            const std::vector<amd_id>& joins,
                            const std::vector<amd_id>& requiredJoins) = 0;

    /// Returns the synthetic joins in the order of their numbers, which run from 0 without gaps.
    /// Good until the object changes.
    [[nodiscard]] virtual const std::vector<AQE_I_Refiner::QEjoinInfo>& GetShortcutJoins() = 0;

    /// Copies the synthetic join with that id into `info`; false when there is none. An id whose
    /// number fits but whose domain does not gives false with `info` overwritten.
    [[nodiscard]] virtual bool GetJoinInfo(const amd_id& joinId,
                                           AQE_I_Refiner::QEjoinInfo& info) = 0;

    /// Returns the key of the group that `id` is a member of, or `id` itself when it is in none.
    [[nodiscard]] virtual amd_id GetGroupKey(const amd_id& id) = 0;

    /// Writes the groups and the synthetic joins, for people.
    virtual void Dump(std::ostream& out) = 0;
};

#endif
