#ifndef INCLUDE_AQE_JOINCACHE_H
#define INCLUDE_AQE_JOINCACHE_H

#include "AQE_I_Refiner.h"
#include "QEREFINER_EXPORT.h"
#include "amd_id.h"

#include <map>
#include <memory>
#include <vector>

namespace qe {
class CandidateShelf;
class JoinCacheAccess;
class JoinStore;
} // namespace qe

/// Keeps, for the life of one request, the joins that were read and the join paths that were
/// chosen. Entries are added and replaced, never dropped. Refiners also keep the candidate graph of
/// their last operation here, for the next one with the same candidates, with what the graph
/// remembers of its own searches. One thread at a time uses a cache.
class QEREFINER_EXPORT AQE_JoinCache
{
public:
    using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

    AQE_JoinCache();
    AQE_JoinCache(const AQE_JoinCache&) = delete;
    AQE_JoinCache& operator=(const AQE_JoinCache&) = delete;
    virtual ~AQE_JoinCache();

    /// Replaces `info` by the join that is stored under the id; false, and `info` as it was, when
    /// there is none.
    [[nodiscard]] bool GetJoinInfo(const amd_id& joinId, QEjoinInfo& info) const;

    /// Stores a copy of `info` under the id, in place of what was there.
    void CacheJoinInfo(const amd_id& joinId, QEjoinInfo& info);

    /// Replaces `path` by the path that is stored for the request; false, and `path` as it was,
    /// when there is none. A request is known by the ids of all three lists together: order,
    /// repetition and the list in which an id stands make no difference.
    [[nodiscard]] bool GetJoinPath(const std::vector<amd_id>& querySubjects,
                                   const std::vector<amd_id>& favouredJoins,
                                   const std::vector<amd_id>& requiredJoins,
                                   std::vector<amd_id>& path) const;

    /// Stores a copy of `path` for the request, in place of what was there.
    void CacheJoinPath(const std::vector<amd_id>& querySubjects,
                       const std::vector<amd_id>& favouredJoins,
                       const std::vector<amd_id>& requiredJoins, const std::vector<amd_id>& path);

    /// Returns a copy of every stored path, in the order of their sets of ids.
    [[nodiscard]] std::vector<std::vector<amd_id>> GetAllJoinPaths();

private:
    friend qe::JoinCacheAccess;
    /// A set of ids, in order and each once.
    using JoinPathKey = std::vector<amd_id>;

    std::unique_ptr<qe::JoinStore> mJoins;
    std::map<JoinPathKey, std::vector<amd_id>> mJoinPaths;
    std::shared_ptr<qe::CandidateShelf> mShelf;
};

#endif
