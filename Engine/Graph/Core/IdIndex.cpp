#include "Engine/Graph/Core/IdIndex.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

namespace qe::graph {

namespace {

// Flipping the sign bit makes unsigned order agree with the signed order of the ids' words.
constexpr std::uint32_t kSignBit = 0x80000000U;

std::uint32_t ToOrdered(std::int32_t word)
{
    return static_cast<std::uint32_t>(word) ^ kSignBit;
}

std::int32_t FromOrdered(std::uint32_t word)
{
    return static_cast<std::int32_t>(word ^ kSignBit);
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

constexpr unsigned kBytesOfId = 12;

// Counts from the least significant byte.
std::uint8_t GetByte(const IdIndex::Entry& entry, unsigned byte)
{
    const std::uint64_t word = byte < 4 ? std::uint64_t{entry.number} >> 8U * byte
                                        : entry.domainAndClass >> 8U * (byte - 4);
    return static_cast<std::uint8_t>(word);
}

void SortByByte(std::vector<IdIndex::Entry>& entries, unsigned byte,
                std::vector<IdIndex::Entry>& space)
{
    std::array<std::size_t, 256> next{};
    for (const IdIndex::Entry& entry : entries)
        ++next[GetByte(entry, byte)];
    if (next[GetByte(entries.front(), byte)] == entries.size())
        return;
    std::size_t total = 0;
    for (std::size_t& count : next)
        total += std::exchange(count, total);
    space.resize(entries.size());
    for (const IdIndex::Entry& entry : entries)
        space[next[GetByte(entry, byte)]++] = entry;
    entries.swap(space);
}

// Sorts by id and leaves equal ids in their order. The ids of one model differ in few bytes, so
// that many are sorted fastest byte by byte.
void SortById(std::vector<IdIndex::Entry>& entries)
{
    constexpr std::size_t kFewestToCount = 512;
    if (entries.size() < kFewestToCount) {
        std::stable_sort(entries.begin(), entries.end(), IsIdLess);
        return;
    }
    std::vector<IdIndex::Entry> space;
    for (unsigned byte = 0; byte < kBytesOfId; ++byte)
        SortByByte(entries, byte, space);
}

// Looks where the entry stands if ids are numbered without gaps, as those of a model mostly are.
// Finds it otherwise by halving without a branch that would have to be guessed: loading a graph
// looks up both ends of every edge.
const IdIndex::Entry* FindIn(const std::vector<IdIndex::Entry>& run, const IdIndex::Entry& key)
{
    const std::size_t place = run.empty() ? 0 : std::size_t{key.number} - run.front().number;
    if (place < run.size() && IsSameId(run[place], key))
        return &run[place];
    const IdIndex::Entry* first = run.data();
    for (std::size_t count = run.size(); count > 1;) {
        const std::size_t half = count / 2;
        const auto isBehind = static_cast<std::size_t>(!IsIdLess(key, first[half]));
        first += isBehind * half;
        count -= half;
    }
    return !run.empty() && IsSameId(*first, key) ? first : nullptr;
}

std::vector<IdIndex::Entry> MergeRuns(const std::vector<IdIndex::Entry>& left,
                                      const std::vector<IdIndex::Entry>& right)
{
    std::vector<IdIndex::Entry> merged;
    merged.reserve(left.size() + right.size());
    std::merge(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(merged),
               IsIdLess);
    return merged;
}

} // namespace

amd_id IdIndex::Entry::GetId() const
{
    return {FromOrdered(static_cast<std::uint32_t>(domainAndClass >> 32U)),
            FromOrdered(static_cast<std::uint32_t>(domainAndClass)), FromOrdered(number)};
}

IdIndex::Addition IdIndex::Prepare(std::span<const amd_id> ids)
{
    Addition addition;
    Run& run = addition.mRun;
    run.reserve(ids.size());
    for (const amd_id& id : ids)
        run.push_back(MakeEntry(id, static_cast<std::uint32_t>(run.size())));
    // The ids of a model mostly come in their order, each once.
    if (std::adjacent_find(run.begin(), run.end(), std::not_fn(IsIdLess)) != run.end()) {
        SortById(run);
        run.erase(std::unique(run.begin(), run.end(), IsSameId), run.end());
    }
    DropKnown(run);
    addition.mPlaces = AssignSlots(run, ids.size());
    std::size_t& kept = addition.mKeptRuns;
    kept = mRuns.size();
    while (!run.empty() && kept > 0 && mRuns[kept - 1].size() <= 2 * run.size())
        run = MergeRuns(mRuns[--kept], run);
    mRuns.reserve(kept + 1);
    return addition;
}

void IdIndex::Commit(Addition addition) noexcept
{
    if (addition.mPlaces.empty())
        return;
    mCount += static_cast<std::uint32_t>(addition.mPlaces.size());
    mRuns.resize(addition.mKeptRuns);
    mRuns.push_back(std::move(addition.mRun));
}

bool IdIndex::Add(std::span<const amd_id> ids)
{
    Addition addition = Prepare(ids);
    const bool isNew = !addition.GetPlaces().empty();
    Commit(std::move(addition));
    return isNew;
}

// Turns the places in the entries into slots, given in the order of the places.
std::vector<std::uint32_t> IdIndex::AssignSlots(Run& run, std::size_t placeCount) const
{
    if (run.size() == placeCount) {
        for (Entry& entry : run)
            entry.slot += mCount;
        std::vector<std::uint32_t> all(placeCount);
        std::iota(all.begin(), all.end(), 0U);
        return all;
    }
    constexpr std::uint32_t kNoSlot = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> slotOfPlace(placeCount, kNoSlot);
    for (const Entry& entry : run)
        slotOfPlace[entry.slot] = 0;
    std::vector<std::uint32_t> places;
    places.reserve(run.size());
    std::uint32_t next = mCount;
    for (std::uint32_t place = 0; place < placeCount; ++place) {
        if (slotOfPlace[place] == kNoSlot)
            continue;
        slotOfPlace[place] = next++;
        places.push_back(place);
    }
    for (Entry& entry : run)
        entry.slot = slotOfPlace[entry.slot];
    return places;
}

void IdIndex::DropKnown(Run& run) const
{
    for (const Run& known : mRuns)
        run.erase(std::remove_if(run.begin(), run.end(),
                                 [&known](const Entry& entry) { return FindIn(known, entry); }),
                  run.end());
}

std::uint32_t IdIndex::FindSlot(const amd_id& id) const
{
    const Entry key = MakeEntry(id, 0);
    for (const Run& run : mRuns) {
        if (const Entry* found = FindIn(run, key))
            return found->slot;
    }
    return kNoIndex;
}

std::span<const IdIndex::Entry> IdIndex::GetSorted()
{
    while (mRuns.size() > 1) {
        Run merged = MergeRuns(mRuns[mRuns.size() - 2], mRuns.back());
        mRuns.pop_back();
        mRuns.back() = std::move(merged);
    }
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
