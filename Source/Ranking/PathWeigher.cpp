#include "Ranking/PathWeigher.h"

#include "AUT_I_UserConfiguration.h"
#include "IdClass.h"
#include "QEJoinTree.h"
#include "Ranking/FolderDistance.h"
#include "Ranking/WrappingArithmetic.h"

#include <atomic>

namespace qe {

namespace {

constexpr std::int32_t kFolderScale = 1000;

/// The setting "AdjustWeightByFolder" as it was when it was first asked for. Two first callers at
/// once may both read it, with the same result.
struct CachedFolderSetting
{
    std::atomic<bool> alreadyRead{false};
    std::atomic<bool> adjustByFolder{true};
};

CachedFolderSetting cachedSetting;

} // namespace

PathWeigher::PathWeigher(const RefinerServices& services, const AQE_JoinTree& tree,
                         const Ids& favouredJoins, const Ids& requiredJoins)
    : mServices(services), mTree(tree), mExemptJoins(favouredJoins.begin(), favouredJoins.end())
{
    mExemptJoins.insert(requiredJoins.begin(), requiredJoins.end());
}

PathWeigher::EFolders PathWeigher::GetFolderMode()
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
    const std::int32_t edgeWeight = mTree.GetPathWeight({join});
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

} // namespace qe
