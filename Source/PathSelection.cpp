#include "PathSelection.h"

#include <utility>

template class AUT_RefPtr<AQE_I_PathSelector>;

AQE_I_JoinPathDescriptor::~AQE_I_JoinPathDescriptor() = default;

AQE_I_PathSelector::~AQE_I_PathSelector() = default;

AUT_RefPtr<AQE_I_PathSelector>
AQE_I_PathSelector::CreateFirstPathSelector(amdi_gateway* /*gateway*/)
{
    return AUT_RefPtr<AQE_I_PathSelector>(new AQE_FirstPathSelector);
}

AQE_JoinPathDescriptor::AQE_JoinPathDescriptor(std::vector<amd_id> joinPath, std::int32_t rank,
                                               std::int32_t weight)
    : mJoinPath(std::move(joinPath)), mRank(rank), mWeight(weight)
{}

AQE_JoinPathDescriptor::~AQE_JoinPathDescriptor() = default;

void AQE_JoinPathDescriptor::GetJoinPath(std::vector<amd_id>& joinPath) const
{
    joinPath = mJoinPath;
}

int AQE_JoinPathDescriptor::GetRank() const
{
    return mRank;
}

int AQE_JoinPathDescriptor::GetComputedWeight() const
{
    return mWeight;
}

AQE_FirstPathSelector::~AQE_FirstPathSelector() = default;

std::uint32_t AQE_FirstPathSelector::SelectPath(
    const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& /*descriptors*/)
{
    return 0;
}

std::uint32_t
AQE_FirstPathSelector::SelectAlternative(const std::vector<std::vector<amd_id>>& /*paths*/)
{
    return 0;
}

namespace qe {

std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>
DescribePaths(std::span<const WeightedPath> candidates, std::span<const RankedPath> ranked)
{
    std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>> descriptors;
    descriptors.reserve(ranked.size());
    for (const RankedPath& path : ranked) {
        const WeightedPath& candidate = candidates[path.candidate];
        descriptors.push_back(AUT_RefPtr<AQE_I_JoinPathDescriptor>(new AQE_JoinPathDescriptor(
            {candidate.path.begin(), candidate.path.end()}, path.ranking, candidate.weight)));
    }
    return descriptors;
}

} // namespace qe
