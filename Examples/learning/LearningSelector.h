#ifndef EXAMPLES_LEARNING_LEARNINGSELECTOR_H
#define EXAMPLES_LEARNING_LEARNINGSELECTOR_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace learning {

/// Takes, of the paths of least weight, the one whose joins people used most often. It chooses only
/// where the refiner leaves a choice: no path becomes cheaper for having been used, so none wins by
/// a detour.
class LearningSelector : public AQE_I_PathSelector
{
public:
    /// Counts a path that a person used.
    void Learn(const std::vector<amd_id>& path);

    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override;
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) override;

private:
    /// The sum of the logarithms of one more than the uses, so that a join which nobody used costs
    /// more than a rare one.
    [[nodiscard]] double Measure(const std::vector<amd_id>& path) const;

    std::map<amd_id, std::size_t> mUses;
};

} // namespace learning

#endif
