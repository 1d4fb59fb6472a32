#ifndef SOURCE_JOINS_JOINCACHEACCESS_H
#define SOURCE_JOINS_JOINCACHEACCESS_H

#include "AQE_JoinCache.h"
#include "Joins/JoinStore.h"

#include <memory>

namespace qe {

/// What the refiner does with a join cache beyond what the cache offers to hosts.
class JoinCacheAccess
{
public:
    explicit JoinCacheAccess(AQE_JoinCache& cache) : mCache(cache) {}

    [[nodiscard]] JoinStore& Joins() const { return *mCache.mJoins; }

    /// Returns where candidates are kept; null until something is put there.
    [[nodiscard]] std::shared_ptr<CandidateShelf>& Shelf() const { return mCache.mShelf; }

private:
    AQE_JoinCache& mCache;
};

} // namespace qe

#endif
