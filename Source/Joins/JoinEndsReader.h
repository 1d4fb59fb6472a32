#ifndef SOURCE_JOINS_JOINENDSREADER_H
#define SOURCE_JOINS_JOINENDSREADER_H

#include "amd_id.h"

#include <optional>
#include <set>

class AQE_I_QuerySubjectShortcutInfo;
class AQE_RequestContext;
class amdi_gateway;

namespace qe {

/// The two ends of a join, each a query subject or a shortcut.
struct JoinEnds
{
    amd_id left;
    amd_id right;
};

/// A join as the join graph takes it: its ends and its weight.
struct WeighedJoin
{
    JoinEnds ends;
    int weight = 0;
};

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

    /// Gives the ends of a join, or nothing when it cannot be read.
    [[nodiscard]] std::optional<JoinEnds> GetJoinEnds(const amd_id& join,
                                                      EShortcutUse shortcutUse) const;

    /// Gives the ends of a join and its weight, made cheaper where its ends are favoured query
    /// subjects; nothing when it cannot be read.
    [[nodiscard]] std::optional<WeighedJoin> GetWeighedJoin(const amd_id& join,
                                                            EShortcutUse shortcutUse) const;

private:
    [[nodiscard]] std::optional<WeighedJoin> Read(const amd_id& join,
                                                  EShortcutUse shortcutUse) const;
    [[nodiscard]] int AdjustJoinWeight(const JoinEnds& ends, int weight) const;
    [[nodiscard]] bool IsFavoured(const amd_id& end) const;
    [[nodiscard]] bool StandsForFavoured(const amd_id& end) const;

    amdi_gateway* mGateway;
    AQE_RequestContext* mRequestContext;
    AQE_I_QuerySubjectShortcutInfo* mShortcutInfo;
    const std::set<amd_id>& mFavouredSubjects;
};

} // namespace qe

#endif
