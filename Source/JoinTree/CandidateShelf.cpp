#include "JoinTree/CandidateShelf.h"

namespace qe {

std::unique_ptr<LoadedCandidates> CandidateShelf::Take(amdi_gateway* gateway,
                                                       std::uint64_t replacedCount,
                                                       const std::vector<amd_id>& nodes,
                                                       const std::vector<amd_id>& joins)
{
    std::unique_ptr<LoadedCandidates> taken = std::move(mCandidates);
    if (taken == nullptr)
        return nullptr;
    const CandidateSource& source = taken->source;
    const bool isSame = source.gateway == gateway && source.replacedCount == replacedCount &&
                        source.nodes == nodes && source.joins == joins;
    return isSame ? std::move(taken) : nullptr;
}

CandidateLoan::CandidateLoan(std::unique_ptr<LoadedCandidates> candidates,
                             std::shared_ptr<CandidateShelf> shelf)
    : mCandidates(std::move(candidates)), mShelf(std::move(shelf))
{}

CandidateLoan::~CandidateLoan()
{
    if (mShelf == nullptr || mCandidates == nullptr || !mIsComplete)
        return;
    try {
        RestoreWeights();
        mShelf->Put(std::move(mCandidates));
    } catch (...) {
        // Without the weights of their kinds the edges are of no use to the next operation.
    }
}

void CandidateLoan::SetWeight(const amd_id& edge, int weight)
{
    AQE_I_UndirectedGraph& graph = *mCandidates->graph;
    if (mShelf != nullptr)
        mChanged.emplace_back(edge, graph.GetPathWeight({edge}));
    graph.SetEdgeWeight(edge, weight);
}

void CandidateLoan::NoteWeight(const CandidateJoin& edge)
{
    if (mShelf != nullptr)
        mChanged.emplace_back(edge.id, edge.join.weight);
}

void CandidateLoan::RestoreWeights()
{
    if (!mCandidates->isGraphPlain)
        return;
    // The first change of an edge knows the weight that it came with.
    for (auto change = mChanged.rbegin(); change != mChanged.rend(); ++change)
        mCandidates->graph->SetEdgeWeight(change->first, change->second);
}

} // namespace qe
