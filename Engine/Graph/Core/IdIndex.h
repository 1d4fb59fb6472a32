#ifndef ENGINE_GRAPH_CORE_IDINDEX_H
#define ENGINE_GRAPH_CORE_IDINDEX_H

#include "Engine/Graph/Core/Indices.h"

#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// Numbers ids and finds the number of an id.
///
/// Ids get their slots 0, 1, 2, ... when they are added and keep them. They are held in sorted
/// runs, each more than twice as long as the next, a form of the binary transformation of Bentley
/// and Saxe (1980): a batch costs about as much as sorting it, a single id O(log n) amortised, a
/// search O(log^2 n), or O(log n) while there is one run.
class IdIndex
{
public:
    /// An id and its slot, in a form that compares fast.
    struct Entry
    {
        std::uint64_t domainAndClass;
        std::uint32_t number;
        std::uint32_t slot;

        [[nodiscard]] amd_id GetId() const;
    };

    /// Ids that are about to be added to an index, with everything that adding them needs.
    class Addition
    {
    public:
        /// Returns where each id without a slot stands first among those given, in ascending
        /// order: the order in which they get their slots.
        [[nodiscard]] const std::vector<std::uint32_t>& GetPlaces() const { return mPlaces; }

    private:
        friend class IdIndex;

        std::vector<std::uint32_t> mPlaces;
        /// The new ids, merged with the runs behind the first mKeptRuns.
        std::vector<Entry> mRun;
        std::size_t mKeptRuns = 0;
    };

    [[nodiscard]] std::uint32_t GetCount() const { return mCount; }

    /// Returns what Commit needs to give a slot to each id that has none yet. Changes nothing that
    /// can be seen, so that a caller who runs out of memory still has the index as it was.
    [[nodiscard]] Addition Prepare(std::span<const amd_id> ids);
    /// Adds what Prepare returned; the index has not changed in between.
    void Commit(Addition addition) noexcept;
    /// Prepares and commits. Returns whether there was a new id.
    bool Add(std::span<const amd_id> ids);

    /// Returns the slot of the id; kNoIndex when it has none.
    [[nodiscard]] std::uint32_t FindSlot(const amd_id& id) const;

    /// Returns all ids in ascending order, after merging them into one run when there are more:
    /// O(n). The span is good until an id is added.
    [[nodiscard]] std::span<const Entry> GetSorted();

    /// Returns the place of the id in what GetSorted returns.
    [[nodiscard]] std::optional<std::uint32_t> FindPlace(const amd_id& id);

private:
    using Run = std::vector<Entry>;

    void DropKnown(Run& run) const;
    [[nodiscard]] std::vector<std::uint32_t> AssignSlots(Run& run, std::size_t placeCount) const;

    std::vector<Run> mRuns;
    std::uint32_t mCount = 0;
};

} // namespace qe::graph

#endif
