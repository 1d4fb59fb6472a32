#include "Ranking/PathWeigher.h"

#include "AUT_I_UserConfiguration.h"
#include "IdClass.h"
#include "Ranking/FolderDistance.h"
#include "Rules/WrappingArithmetic.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <set>

namespace qe {

namespace {

using Ids = std::vector<amd_id>;

constexpr std::int32_t kFolderScale = 1000;

/// The setting "AdjustWeightByFolder" as it was when it was first asked for. Two first callers at
/// once may both read it, with the same result.
struct CachedFolderSetting
{
    std::atomic<bool> alreadyRead{false};
    std::atomic<bool> adjustByFolder{true};
};

CachedFolderSetting cachedSetting;

enum class EFolders
{
    Ignore,
    Count
};

EFolders GetFolderMode()
{
    if (!cachedSetting.alreadyRead) {
        // Noted first: the configuration is asked once, even when it fails to answer.
        cachedSetting.alreadyRead = true;
        const auto configuration = AUT_I_UserConfiguration::Create(RootKeyUser);
        if (configuration->GetInt("General Options", "AdjustWeightByFolder", 0) == 0)
            cachedSetting.adjustByFolder = false;
    }
    return cachedSetting.adjustByFolder ? EFolders::Count : EFolders::Ignore;
}

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
    [[nodiscard]] std::int32_t ComputeTerm(const amd_id& join, EFolders folders) const;
    [[nodiscard]] bool IsExempt(const amd_id& join) const;

    const CandidatePaths& mCandidates;
    const RefinerServices& mServices;
    std::set<amd_id> mExemptJoins;
    /// What each join adds to a path; alternatives share most of their joins.
    std::map<amd_id, std::int32_t> mTerms;
};

std::int32_t PathWeigher::ComputePathWeight(const Ids& path)
{
    const EFolders folders = GetFolderMode();
    std::int32_t weight = 0;
    for (const amd_id& join : path) {
        auto term = mTerms.find(join);
        if (term == mTerms.end())
            term = mTerms.emplace(join, ComputeTerm(join, folders)).first;
        weight = AddWrapping(weight, term->second);
    }
    return weight;
}

std::int32_t PathWeigher::ComputeTerm(const amd_id& join, EFolders folders) const
{
    const std::int32_t edgeWeight = mCandidates.getPathWeight({join});
    if (folders == EFolders::Ignore)
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
