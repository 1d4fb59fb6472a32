#include "Ranking/BestPaths.h"

#include "Ranking/PathShape.h"

#include <numeric>

namespace qe {

namespace {

using Indices = std::vector<std::size_t>;

/// Keeps the members with the least key, in their order.
template <typename GetKey>
Indices KeepLeast(const Indices& members, GetKey getKey)
{
    Indices kept;
    std::int32_t least = 0;
    for (const std::size_t member : members) {
        const std::int32_t key = getKey(member);
        if (kept.empty() || key < least) {
            kept.clear();
            least = key;
        }
        if (key == least)
            kept.push_back(member);
    }
    return kept;
}

} // namespace

std::vector<std::size_t> SelectBestPaths(const std::vector<std::vector<amd_id>>& paths,
                                         const std::vector<std::int32_t>& weights,
                                         const JoinInfoReader& joinInfos)
{
    Indices all(paths.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const Indices lightest = KeepLeast(all, [&](std::size_t index) { return weights[index]; });
    return KeepLeast(lightest,
                     [&](std::size_t index) { return CountFactTables(paths[index], joinInfos); });
}

} // namespace qe
