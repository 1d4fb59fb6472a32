#ifndef SOURCE_JOINTREE_CROSSPRODUCTGOVERNOR_H
#define SOURCE_JOINTREE_CROSSPRODUCTGOVERNOR_H

#include "I18NString.h"
#include "Joins/HostNumbers.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <functional>
#include <vector>

class AQE_RequestContext;
class amdi_gateway;
class amdi_object;
struct AQE_Governors;

namespace qe {

/// Decides what happens when query subjects cannot be connected by joins, so that the query would
/// need a cross product: nothing, a warning to the user, or an error. Borrows what it is given; all
/// of it may be null, and without governors nothing happens.
class CrossProductGovernor
{
public:
    /// Names the query subjects; asked only when an error is about to be raised.
    using NamesText = std::function<I18NString()>;

    explicit CrossProductGovernor(const RefinerServices& services);

    /// Checks for the growths that meet unconnected query subjects one by one. An error is
    /// raised as `failure`.
    void CheckCrossProduct(const NamesText& names, const host::Failure& failure) const;

    /// Checks for the cheapest-trees search, which found no tree for `subjects`. Whatever does not
    /// forbid a cross product warns here, and a user setting can switch the check off.
    void CheckCheapestTrees(const std::vector<amd_id>& subjects) const;

    /// Returns the names of two subjects.
    [[nodiscard]] I18NString GetPairNames(const amd_id& first, const amd_id& second) const;

    /// Returns the display names of the subjects. An id without an object adds no name, but its
    /// position counts for the separators.
    [[nodiscard]] I18NString JoinSubjectNames(const std::vector<amd_id>& subjects) const;

private:
    [[nodiscard]] const amdi_object* FindObject(const amd_id& id) const;
    void Warn() const;
    void RaiseUnlessHarmless(const NamesText& names, const host::Failure& failure) const;
    [[nodiscard]] I18NString GetUserClasses() const;

    amdi_gateway* mGateway;
    const AQE_Governors* mGovernors;
    AQE_RequestContext* mRequestContext;
};

} // namespace qe

#endif
