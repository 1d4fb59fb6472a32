#ifndef SOURCE_JOINS_JOININFOREADER_H
#define SOURCE_JOINS_JOININFOREADER_H

#include "AQE_I_Refiner.h"
#include "amd_id.h"

#include <optional>
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

/// Reads the joins of candidate paths, whichever side knows them: synthetic shortcut joins come
/// from the shortcut information, all others from the metadata.
class JoinInfoReader
{
public:
    explicit JoinInfoReader(const RefinerServices& services);

    /// Returns the join, or nothing when it cannot be read. Without shortcut information no
    /// synthetic join can.
    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo>
    LookUpJoinInfo(const amd_id& joinId) const;

    /// Returns the joins of the path that can be read, in their order.
    [[nodiscard]] std::vector<amd_id> KeepReadableJoins(const std::vector<amd_id>& path) const;

private:
    RefinerServices mServices;
};

} // namespace qe

#endif
