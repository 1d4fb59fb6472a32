#ifndef SOURCE_JOINS_JOINCACHEACCESS_H
#define SOURCE_JOINS_JOINCACHEACCESS_H

#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace qe {

/// What the refiner does with a join cache beyond what the cache offers to hosts.
class JoinCacheAccess
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    explicit JoinCacheAccess(AQE_JoinCache& cache) : mCache(cache) {}

    /// Returns the join that is stored under the id, or null. It stays where it is as long as the
    /// cache lives.
    [[nodiscard]] const QEjoinInfo* Find(const amd_id& joinId) const
    {
        const auto& infos = mCache.mJoinInfos;
        // What is read comes mostly in the order of its ids, and is then not there yet.
        if (infos.empty() || infos.rbegin()->first < joinId)
            return nullptr;
        const auto found = infos.find(joinId);
        return found == infos.end() ? nullptr : &found->second;
    }

    /// Stores the join under the id, in place of what was there, and returns it.
    const QEjoinInfo& Keep(const amd_id& joinId, QEjoinInfo&& info) const
    {
        auto& infos = mCache.mJoinInfos;
        const std::size_t count = infos.size();
        const auto kept = infos.try_emplace(infos.end(), joinId, std::move(info));
        if (infos.size() == count) {
            kept->second = std::move(info);
            ++mCache.mReplacedCount;
        }
        return kept->second;
    }

    /// Returns how often a join was replaced.
    [[nodiscard]] std::uint64_t GetReplacedCount() const { return mCache.mReplacedCount; }

    /// Returns where candidates are kept; null until something is put there.
    [[nodiscard]] std::shared_ptr<CandidateShelf>& Shelf() const { return mCache.mShelf; }

private:
    AQE_JoinCache& mCache;
};

} // namespace qe

#endif
