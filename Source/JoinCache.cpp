#include "AQE_JoinCache.h"

#include "Joins/JoinStore.h"

#include <algorithm>

namespace {

std::vector<amd_id> MakeKey(const std::vector<amd_id>& querySubjects,
                            const std::vector<amd_id>& favouredJoins,
                            const std::vector<amd_id>& requiredJoins)
{
    std::vector<amd_id> key;
    key.reserve(querySubjects.size() + favouredJoins.size() + requiredJoins.size());
    for (const auto* const ids : {&querySubjects, &favouredJoins, &requiredJoins})
        key.insert(key.end(), ids->begin(), ids->end());
    std::sort(key.begin(), key.end());
    key.erase(std::unique(key.begin(), key.end()), key.end());
    return key;
}

} // namespace

AQE_JoinCache::AQE_JoinCache() : mJoins(std::make_unique<qe::JoinStore>())
{}

AQE_JoinCache::~AQE_JoinCache() = default;

bool AQE_JoinCache::GetJoinInfo(const amd_id& joinId, QEjoinInfo& info) const
{
    return mJoins->Copy(joinId, info);
}

void AQE_JoinCache::CacheJoinInfo(const amd_id& joinId, QEjoinInfo& info)
{
    mJoins->Keep(joinId, info);
}

bool AQE_JoinCache::GetJoinPath(const std::vector<amd_id>& querySubjects,
                                const std::vector<amd_id>& favouredJoins,
                                const std::vector<amd_id>& requiredJoins,
                                std::vector<amd_id>& path) const
{
    const auto found = mJoinPaths.find(MakeKey(querySubjects, favouredJoins, requiredJoins));
    if (found == mJoinPaths.end())
        return false;
    path = found->second;
    return true;
}

void AQE_JoinCache::CacheJoinPath(const std::vector<amd_id>& querySubjects,
                                  const std::vector<amd_id>& favouredJoins,
                                  const std::vector<amd_id>& requiredJoins,
                                  const std::vector<amd_id>& path)
{
    mJoinPaths.insert_or_assign(MakeKey(querySubjects, favouredJoins, requiredJoins),
                                std::vector<amd_id>(path));
}

std::vector<std::vector<amd_id>> AQE_JoinCache::GetAllJoinPaths()
{
    std::vector<std::vector<amd_id>> paths;
    paths.reserve(mJoinPaths.size());
    for (const auto& [key, path] : mJoinPaths)
        paths.push_back(path);
    return paths;
}
