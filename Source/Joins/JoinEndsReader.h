#ifndef SOURCE_JOINS_JOINENDSREADER_H
#define SOURCE_JOINS_JOINENDSREADER_H

#include "Joins/JoinInfoReader.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <optional>
#include <set>

namespace qe {

/// Reads the ends and weights of joins for a join tree.
class JoinEndsReader
{
public:
    /// Whether a join that the metadata does not know is looked up among the synthetic shortcut
    /// joins as well.
    enum class EShortcutUse
    {
        Ignore,
        Consult,
    };

    /// Borrows what the services name, and the query subjects whose joins are made cheaper.
    JoinEndsReader(const RefinerServices& services, const std::set<amd_id>& favouredSubjects,
                   EShortcutUse shortcutUse);

    /// Returns whether synthetic shortcut joins are consulted.
    [[nodiscard]] EShortcutUse GetShortcutUse() const { return mShortcutUse; }

    /// Returns the ends of a join, or nothing when it cannot be read.
    [[nodiscard]] std::optional<JoinEnds> GetJoinEnds(const amd_id& join) const;

    /// Returns the ends of a join and its weight, made cheaper where its ends are favoured query
    /// subjects; nothing when it cannot be read.
    [[nodiscard]] std::optional<WeighedJoin> GetWeighedJoin(const amd_id& join) const;

private:
    [[nodiscard]] std::optional<WeighedJoin> Read(const amd_id& join) const;

    RefinerServices mServices;
    const std::set<amd_id>& mFavouredSubjects;
    EShortcutUse mShortcutUse;
};

} // namespace qe

#endif
