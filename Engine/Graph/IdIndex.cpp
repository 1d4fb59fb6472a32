#include "Engine/Graph/IdIndex.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace qe::graph {

namespace {

// Flipping the sign bit makes unsigned order agree with the signed order of the ids' words.
constexpr std::uint32_t SignBit = 0x80000000U;

std::uint32_t ToOrdered(std::int32_t word)
{
    return static_cast<std::uint32_t>(word) ^ SignBit;
}

std::int32_t FromOrdered(std::uint32_t word)
{
    return static_cast<std::int32_t>(word ^ SignBit);
}

IdIndex::Entry MakeEntry(const amd_id& id, std::uint32_t slot)
{
    const std::uint64_t domain = ToOrdered(id.domain);
    return {domain << 32U | ToOrdered(id.classCode), ToOrdered(id.number), slot};
}

bool IsIdLess(const IdIndex::Entry& left, const IdIndex::Entry& right)
{
    return left.domainAndClass != right.domainAndClass ? left.domainAndClass < right.domainAndClass
                                                       : left.number < right.number;
}

bool IsSameId(const IdIndex::Entry& left, const IdIndex::Entry& right)
{
    return left.domainAndClass == right.domainAndClass && left.number == right.number;
}

bool IsIdAndSlotLess(const IdIndex::Entry& left, const IdIndex::Entry& right)
{
    return std::tie(left.domainAndClass, left.number, left.slot) <
           std::tie(right.domainAndClass, right.number, right.slot);
}

const IdIndex::Entry* FindIn(const std::vector<IdIndex::Entry>& run, const IdIndex::Entry& key)
{
    const auto at = std::lower_bound(run.begin(), run.end(), key, IsIdLess);
    return at != run.end() && IsSameId(*at, key) ? &*at : nullptr;
}

} // namespace

amd_id IdIndex::Entry::GetId() const
{
    return {FromOrdered(static_cast<std::uint32_t>(domainAndClass >> 32U)),
            FromOrdered(static_cast<std::uint32_t>(domainAndClass)), FromOrdered(number)};
}

std::vector<std::uint32_t> IdIndex::Add(std::span<const amd_id> ids)
{
    Run run;
    run.reserve(ids.size());
    for (const amd_id& id : ids)
        run.push_back(MakeEntry(id, static_cast<std::uint32_t>(run.size())));
    if (!std::is_sorted(run.begin(), run.end(), IsIdAndSlotLess))
        std::sort(run.begin(), run.end(), IsIdAndSlotLess);
    run.erase(std::unique(run.begin(), run.end(), IsSameId), run.end());
    DropKnown(run);

    std::vector<std::uint32_t> places;
    places.reserve(run.size());
    for (Entry& entry : run)
        places.push_back(std::exchange(entry.slot, mCount++));
    if (!run.empty())
        mRuns.push_back(std::move(run));
    while (mRuns.size() > 1 && mRuns[mRuns.size() - 2].size() <= 2 * mRuns.back().size())
        MergeLastTwoRuns();
    return places;
}

void IdIndex::DropKnown(Run& run) const
{
    for (const Run& known : mRuns)
        run.erase(std::remove_if(run.begin(), run.end(),
                                 [&known](const Entry& entry) { return FindIn(known, entry); }),
                  run.end());
}

void IdIndex::MergeLastTwoRuns()
{
    const Run& left = mRuns[mRuns.size() - 2];
    const Run& right = mRuns.back();
    Run merged;
    merged.reserve(left.size() + right.size());
    std::merge(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(merged),
               IsIdLess);
    mRuns.pop_back();
    mRuns.back() = std::move(merged);
}

std::optional<std::uint32_t> IdIndex::FindSlot(const amd_id& id) const
{
    const Entry key = MakeEntry(id, 0);
    for (const Run& run : mRuns) {
        if (const Entry* found = FindIn(run, key))
            return found->slot;
    }
    return std::nullopt;
}

std::span<const IdIndex::Entry> IdIndex::GetSorted()
{
    while (mRuns.size() > 1)
        MergeLastTwoRuns();
    return mRuns.empty() ? std::span<const Entry>() : std::span<const Entry>(mRuns.front());
}

std::optional<std::uint32_t> IdIndex::FindPlace(const amd_id& id)
{
    const std::span<const Entry> sorted = GetSorted();
    if (sorted.empty())
        return std::nullopt;
    const Entry* const found = FindIn(mRuns.front(), MakeEntry(id, 0));
    return found == nullptr ? std::nullopt
                            : std::optional(static_cast<std::uint32_t>(found - sorted.data()));
}

} // namespace qe::graph
