#ifndef SOURCE_JOINTREE_CANDIDATESHELF_H
#define SOURCE_JOINTREE_CANDIDATESHELF_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class amdi_gateway;

namespace qe {

/// What candidates are made from. They are the same candidates as long as all of it is the same.
struct CandidateSource
{
    amdi_gateway* gateway = nullptr;
    /// How many joins of the join cache had been replaced.
    std::uint64_t replacedCount = 0;
    std::vector<amd_id> nodes{};
    std::vector<amd_id> joins{};
};

/// A join that the candidate graph has as an edge.
struct CandidateJoin
{
    amd_id id;
    WeighedJoin join;
};

/// The candidates of a request, read and loaded.
struct LoadedCandidates
{
    CandidateSource source{};
    /// In the order in which they were read.
    std::vector<CandidateJoin> edges{};
    /// Joins that could not be read, which may be there the next time.
    std::vector<amd_id> unreadable{};
    /// The nodes, and the edges with the weights of their kinds.
    AUT_RefPtr<AQE_I_UndirectedGraph> graph = AQE_I_UndirectedGraph::Create();
    /// The synthetic shortcut joins that are in the graph as well.
    std::vector<CandidateJoin> shortcutJoins{};
    /// Whether the graph has nothing beyond these.
    bool isGraphPlain = true;
};

/// Where the candidates of a request context wait for the next operation. Empty while an operation
/// works with them, so that another one in between makes candidates of its own.
class CandidateShelf
{
public:
    /// Returns the candidates that were made from the same; null when there are none. What was made
    /// from something else is dropped.
    [[nodiscard]] std::unique_ptr<LoadedCandidates> Take(amdi_gateway* gateway,
                                                         std::uint64_t replacedCount,
                                                         const std::vector<amd_id>& nodes,
                                                         const std::vector<amd_id>& joins);

    void Put(std::unique_ptr<LoadedCandidates> candidates) noexcept
    {
        mCandidates = std::move(candidates);
    }

private:
    std::unique_ptr<LoadedCandidates> mCandidates;
};

/// The candidates that one operation works with, and the weights that it sets in their graph. When
/// the operation was completed they go back to the shelf as they came; otherwise they are dropped.
class CandidateLoan
{
public:
    CandidateLoan() = default;
    /// Takes candidates, and the shelf that they go to; null for none.
    CandidateLoan(std::unique_ptr<LoadedCandidates> candidates,
                  std::shared_ptr<CandidateShelf> shelf);
    CandidateLoan(CandidateLoan&&) noexcept = default;
    CandidateLoan& operator=(CandidateLoan&&) noexcept = default;
    ~CandidateLoan();

    [[nodiscard]] LoadedCandidates& Get() const { return *mCandidates; }

    /// Sets the weight of an edge for this operation; nothing happens when there is no such edge.
    void SetWeight(const amd_id& edge, int weight);
    /// Notes that an edge has another weight than that of its kind.
    void NoteWeight(const CandidateJoin& edge);

    /// Declares the operation completed.
    void Complete() noexcept { mIsComplete = true; }

private:
    void RestoreWeights();

    std::unique_ptr<LoadedCandidates> mCandidates;
    std::shared_ptr<CandidateShelf> mShelf;
    /// Edges with the weights that they had before.
    std::vector<std::pair<amd_id, int>> mChanged;
    bool mIsComplete = false;
};

} // namespace qe

#endif
