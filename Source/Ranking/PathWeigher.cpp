#include "Ranking/PathWeigher.h"

#include "IdClass.h"
#include "Joins/UserSettings.h"
#include "Ranking/FolderDistance.h"
#include "Rules/PathMeasure.h"

#include <cstdint>
#include <map>
#include <set>

namespace qe {

namespace {

using Ids = std::vector<amd_id>;

constexpr std::int32_t kFolderScale = 1000;

/// Weighs the paths of one operation.
class PathWeigher
{
public:
    PathWeigher(const CandidatePaths& candidates, const RefinerServices& services)
        : mCandidates(candidates),
          mServices(services),
          mExemptJoins(candidates.favouredJoins.begin(), candidates.favouredJoins.end())
    {
        mExemptJoins.insert(candidates.requiredJoins.begin(), candidates.requiredJoins.end());
    }

    [[nodiscard]] std::int32_t ComputePathWeight(const Ids& path);

private:
    [[nodiscard]] std::int32_t ComputeTerm(const amd_id& join) const;
    [[nodiscard]] bool IsExempt(const amd_id& join) const;

    const CandidatePaths& mCandidates;
    const RefinerServices& mServices;
    std::set<amd_id> mExemptJoins;
    bool mIsAdjustedByFolder = false;
    /// What each join adds to a path; alternatives share most of their joins.
    std::map<amd_id, std::int32_t> mTerms;
};

std::int32_t PathWeigher::ComputePathWeight(const Ids& path)
{
    mIsAdjustedByFolder = settings::IsAdjustWeightByFolderOn();
    std::int32_t weight = 0;
    for (const amd_id& join : path) {
        auto term = mTerms.find(join);
        if (term == mTerms.end())
            term = mTerms.emplace(join, ComputeTerm(join)).first;
        weight = AddWrapping(weight, term->second);
    }
    return weight;
}

std::int32_t PathWeigher::ComputeTerm(const amd_id& join) const
{
    const std::int32_t edgeWeight = mCandidates.getPathWeight({join});
    if (!mIsAdjustedByFolder)
        return edgeWeight;
    const std::int32_t scaled = MultiplyWrapping(kFolderScale, edgeWeight);
    if (IsExempt(join))
        return scaled;
    return AddWrapping(scaled, FolderDistance(join, mServices.gateway, mServices.requestContext));
}

bool PathWeigher::IsExempt(const amd_id& join) const
{
    return join.classCode == IdClassSpecJoin || mExemptJoins.count(join) != 0 ||
           join.classCode == IdClassShortcutJoin;
}

} // namespace

std::vector<WeightedPath> WeighPaths(const CandidatePaths& candidates,
                                     const RefinerServices& services)
{
    PathWeigher weigher(candidates, services);
    std::vector<WeightedPath> weighted;
    weighted.reserve(candidates.paths.size());
    for (const Ids& path : candidates.paths)
        weighted.push_back({path, weigher.ComputePathWeight(path)});
    return weighted;
}

} // namespace qe
