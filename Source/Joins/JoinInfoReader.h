#ifndef SOURCE_JOINS_JOININFOREADER_H
#define SOURCE_JOINS_JOININFOREADER_H

#include "AQE_I_Refiner.h"
#include "Joins/RefinerServices.h"
#include "amd_id.h"

#include <optional>
#include <vector>

namespace qe {

/// Reads the joins of candidate paths, whichever side knows them: synthetic shortcut joins come
/// from the shortcut information, all others from the metadata.
class JoinInfoReader
{
public:
    explicit JoinInfoReader(const RefinerServices& services);

    /// Gives the join, or nothing when it cannot be read. Without shortcut information no
    /// synthetic join can.
    [[nodiscard]] std::optional<AQE_I_Refiner::QEjoinInfo>
    LookUpJoinInfo(const amd_id& joinId) const;

    /// Gives the joins of the path that can be read, in their order.
    [[nodiscard]] std::vector<amd_id> KeepReadableJoins(const std::vector<amd_id>& path) const;

private:
    RefinerServices mServices;
};

} // namespace qe

#endif
