#ifndef SOURCE_PATHSELECTION_H
#define SOURCE_PATHSELECTION_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_I_PathSelector.h"
#include "AUT_RefPtr.h"
#include "Ranking/PathRanking.h"
#include "amd_id.h"

#include <cstdint>
#include <span>
#include <vector>

/// A ranked candidate join path.
class AQE_JoinPathDescriptor : public AQE_I_JoinPathDescriptor
{
public:
    /// Takes the path, its ranking (100 is best) and the weight that the ranking comes from.
    AQE_JoinPathDescriptor(std::vector<amd_id> joinPath, std::int32_t rank, std::int32_t weight);
    ~AQE_JoinPathDescriptor() override;

    void GetJoinPath(std::vector<amd_id>& joinPath) const override;
    [[nodiscard]] int GetRank() const override;
    [[nodiscard]] int GetComputedWeight() const override;

private:
    std::vector<amd_id> mJoinPath;
    std::int32_t mRank;
    std::int32_t mWeight;
};

/// Takes the first path, which is the best-ranked one.
class AQE_FirstPathSelector : public AQE_I_PathSelector
{
public:
    ~AQE_FirstPathSelector() override;

    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override;
    std::uint32_t SelectAlternative(const std::vector<std::vector<amd_id>>& paths) override;
};

namespace qe {

/// Returns one descriptor for each ranked path, in their order.
[[nodiscard]] std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>
DescribePaths(std::span<const WeightedPath> candidates, std::span<const RankedPath> ranked);

} // namespace qe

#endif
