#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONWALK_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONWALK_H

#include "Engine/Graph/Steiner/List/Derivations.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// Lists trees one by one from the derivations of a search, and expands only the labels that they
/// use: for searches with too many derivations to gather them all.
///
/// The trees come in the order in which the graph of all derivations numbers them, so that a list
/// is the same whether that graph could be filled or not. A tree is put together task by task; what
/// is left to do is a list that later tasks share. At the last task that could be done otherwise
/// the next tree begins.
class DerivationWalk
{
public:
    /// Takes the strand of each edge of the network. Keeps references to derivations and strands,
    /// and the span.
    DerivationWalk(Derivations& derivations, const StrandPool& pool,
                   std::span<const StrandIndex> strands);

    /// Moves to the first tree, and later to the next; returns false behind the last.
    bool MoveNext();
    /// Returns the edges of the tree, in no order.
    [[nodiscard]] std::span<const EdgeIndex> GetTree() const { return mEdges; }

    /// Returns how many tasks have been done and labels looked at.
    [[nodiscard]] std::uint64_t GetSteps() const { return mSteps + mDerivations.GetLookups(); }

private:
    static constexpr std::uint32_t kNothing = kNoIndex;

    enum class EKind : std::uint8_t
    {
        Part,   ///< All of a label: its branch, or one of its joins.
        Branch, ///< A label as a branch: the terminal itself, or one of its steps.
        Strand, ///< One of the edge lists of a strand.
    };
    struct Task
    {
        EKind kind;
        /// The label, or the strand.
        std::uint32_t what;
        /// What is to be done after it.
        std::uint32_t next;
    };
    /// A task that can be done in another manner, and what there was before it was done.
    struct Turn
    {
        std::uint32_t task;
        std::uint64_t nextChoice;
        std::size_t taskCount;
        std::size_t edgeCount;
    };

    [[nodiscard]] std::uint32_t AddTask(EKind kind, std::uint32_t what, std::uint32_t next);
    bool Backtrack();
    void Complete();
    [[nodiscard]] std::uint64_t CountChoices(const Task& task);
    [[nodiscard]] std::optional<std::uint64_t> FindChoice(const Task& task, std::uint64_t choice);
    [[nodiscard]] bool IsBranch(LabelIndex label);
    void Do(const Task& task, std::uint64_t choice);

    Derivations& mDerivations;
    const StrandPool& mPool;
    std::span<const StrandIndex> mStrands;
    std::vector<Task> mTasks;
    std::vector<Turn> mTurns;
    std::vector<EdgeIndex> mEdges;
    /// The task to be done next; kNothing when the tree is complete.
    std::uint32_t mOpen = kNothing;
    std::uint64_t mSteps = 0;
    bool mIsStarted = false;
};

} // namespace qe::graph

#endif
