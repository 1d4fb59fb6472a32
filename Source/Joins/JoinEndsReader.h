#ifndef SOURCE_JOINS_JOINENDSREADER_H
#define SOURCE_JOINS_JOINENDSREADER_H

#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <optional>
#include <set>

class AQE_I_QuerySubjectShortcutInfo;
class AQE_RequestContext;
class amdi_gateway;

namespace qe {

/// Reads the ends and weights of joins for a join tree. Borrows what it is given.
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

    /// Takes the shortcut information, which may be null, and the query subjects whose joins are
    /// made cheaper.
    JoinEndsReader(amdi_gateway* gateway, AQE_RequestContext* requestContext,
                   AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                   const std::set<amd_id>& favouredSubjects);

    /// Returns the ends of a join, or nothing when it cannot be read.
    [[nodiscard]] std::optional<JoinEnds> GetJoinEnds(const amd_id& join,
                                                      EShortcutUse shortcutUse) const;

    /// Returns the ends of a join and its weight, made cheaper where its ends are favoured query
    /// subjects; nothing when it cannot be read.
    [[nodiscard]] std::optional<WeighedJoin> GetWeighedJoin(const amd_id& join,
                                                            EShortcutUse shortcutUse) const;

private:
    [[nodiscard]] std::optional<WeighedJoin> Read(const amd_id& join,
                                                  EShortcutUse shortcutUse) const;

    amdi_gateway* mGateway;
    AQE_RequestContext* mRequestContext;
    AQE_I_QuerySubjectShortcutInfo* mShortcutInfo;
    const std::set<amd_id>& mFavouredSubjects;
};

} // namespace qe

#endif
