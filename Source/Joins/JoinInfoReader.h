#ifndef SOURCE_JOINS_JOININFOREADER_H
#define SOURCE_JOINS_JOININFOREADER_H

#include "AQE_I_Refiner.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

class AQE_I_QuerySubjectShortcutInfo;
class AQE_RequestContext;
class amdi_gateway;
struct AQE_Governors;

namespace qe {

/// What the operations of a refiner work with. All of it is borrowed, and any of it may be null.
struct RefinerServices
{
    amdi_gateway* gateway = nullptr;
    AQE_Governors* governors = nullptr;
    AQE_RequestContext* requestContext = nullptr;
    AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr;
};

/// Reads the joins of candidate paths for one operation, whichever side knows them: synthetic
/// shortcut joins come from the shortcut information, all others from the metadata. Each join is
/// read once; what was read, or could not be, is remembered as long as the reader lives.
class JoinInfoReader
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    explicit JoinInfoReader(const RefinerServices& services);

    /// Returns the join, which stays the reader's, or null when it cannot be read. Without shortcut
    /// information no synthetic join can.
    [[nodiscard]] const QEjoinInfo* LookUpJoinInfo(const amd_id& joinId) const;

    /// Returns the joins of the path that can be read, in their order.
    [[nodiscard]] std::vector<amd_id> KeepReadableJoins(const std::vector<amd_id>& path) const;

private:
    RefinerServices mServices;
    mutable std::map<amd_id, std::optional<QEjoinInfo>> mRead;
};

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

    [[nodiscard]] const RefinerServices& GetServices() const { return mServices; }

    /// Returns whether synthetic shortcut joins are consulted.
    [[nodiscard]] EShortcutUse GetShortcutUse() const { return mShortcutUse; }

    /// Returns the ends of a join, or nothing when it cannot be read.
    [[nodiscard]] std::optional<JoinEnds> GetJoinEnds(const amd_id& join) const;

    /// Returns the ends of a join and the weight of its kind; nothing when it cannot be read.
    [[nodiscard]] std::optional<WeighedJoin> Read(const amd_id& join) const;

    /// Returns whether the weights of joins depend on which query subjects are favoured.
    [[nodiscard]] bool HasFavouredSubjects() const { return !mFavouredSubjects.empty(); }

    /// Returns the weight of a join, made cheaper where its ends are favoured query subjects.
    [[nodiscard]] int AdjustWeight(const WeighedJoin& join) const;

private:
    RefinerServices mServices;
    const std::set<amd_id>& mFavouredSubjects;
    EShortcutUse mShortcutUse;
    /// What each join is read into, so that its memory serves all of them.
    mutable AQE_I_Refiner::QEjoinInfo mSpace;
    /// Read when a weight is first adjusted: looking at a weight may read a setting.
    mutable std::optional<FavouredWeights> mFavouredWeights;
};

} // namespace qe

#endif
