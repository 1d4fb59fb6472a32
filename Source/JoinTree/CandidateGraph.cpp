#include "JoinTree/CandidateGraph.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "IdClass.h"
#include "Joins/JoinCacheAccess.h"
#include "Joins/JoinReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace qe {

namespace {

using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;

int GetTakeFirstWeight()
{
    return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136);
}

void AddEdge(AQE_I_UndirectedGraph& graph, const amd_id& id, const WeighedJoin& join)
{
    graph.AddEdge(id, join.ends.right, join.ends.left, join.weight, 0);
}

std::vector<amd_id> Sort(std::vector<amd_id> ids)
{
    if (!std::is_sorted(ids.begin(), ids.end()))
        std::sort(ids.begin(), ids.end());
    return ids;
}

/// Returns whether the id is among the sorted ones.
bool Contains(const std::vector<amd_id>& sorted, const amd_id& id)
{
    // The ids of a model are mostly numbered without gaps, and then the first tells the place.
    const std::int64_t place = std::int64_t{id.number} - sorted.front().number;
    if (place >= 0 && place < static_cast<std::int64_t>(sorted.size()) &&
        sorted[static_cast<std::size_t>(place)] == id)
        return true;
    return std::binary_search(sorted.begin(), sorted.end(), id);
}

WeighedJoin ToWeighedJoin(const QEjoinInfo& info)
{
    return {.ends = {.left = info.leftQuerySubject, .right = info.rightQuerySubject},
            .weight = info.weight};
}

/// Returns whether the graph has the join only because the shortcut information adds it.
bool IsSynthetic(const LoadedCandidates& candidates, const amd_id& join)
{
    const auto isJoin = [&join](const CandidateJoin& candidate) { return candidate.id == join; };
    return std::any_of(candidates.shortcutJoins.begin(), candidates.shortcutJoins.end(), isJoin) &&
           std::none_of(candidates.edges.begin(), candidates.edges.end(), isJoin);
}

bool IsSame(const CandidateJoin& candidate, const QEjoinInfo& info)
{
    const WeighedJoin& join = candidate.join;
    return candidate.id == info.joinId && join.ends.left == info.leftQuerySubject &&
           join.ends.right == info.rightQuerySubject && join.weight == info.weight;
}

} // namespace

CandidateGraph::CandidateGraph(const JoinEndsReader& endsReader, AQE_I_UndirectedGraph& tree)
    : mEndsReader(endsReader), mTree(tree)
{}

void CandidateGraph::Load(const Request& request)
{
    if (auto* const shortcutInfo = mEndsReader.GetServices().shortcutInfo)
        shortcutInfo->Initialize(request.nodes, request.joins, request.requiredJoins);
    if (!TakeKept(request)) {
        ReadAll(request);
        return;
    }
    if (!IsGraphUsable(request))
        RebuildGraph();
    AdjustWeights();
}

/// Takes the candidates of the last operation if they are the same. Returns whether they are.
bool CandidateGraph::TakeKept(const Request& request)
{
    const RefinerServices& services = mEndsReader.GetServices();
    AQE_JoinCache* const cache = FindJoinCache(services.requestContext);
    // With shortcuts consulted the candidates depend on more than what the cache keeps.
    if (cache == nullptr || mEndsReader.GetShortcutUse() != JoinEndsReader::EShortcutUse::Ignore) {
        mLoan = CandidateLoan(std::make_unique<LoadedCandidates>(), nullptr);
        return false;
    }
    const JoinCacheAccess access(*cache);
    if (access.Shelf() == nullptr)
        access.Shelf() = std::make_shared<CandidateShelf>();
    // Reading a join calls the host, which may put another cache into the request context.
    const std::shared_ptr<CandidateShelf> shelf = access.Shelf();
    const std::uint64_t replacedCount = access.Joins().GetReplacedCount();
    access.Joins().Reserve(request.joins.size());
    std::unique_ptr<LoadedCandidates> kept =
        shelf->Take(services.gateway, replacedCount, request.nodes, request.joins);
    if (kept != nullptr && StayUnreadable(kept->unreadable) && IsUnchanged(shelf, replacedCount)) {
        mLoan = CandidateLoan(std::move(kept), shelf);
        return true;
    }
    auto fresh = std::make_unique<LoadedCandidates>();
    fresh->source = {.gateway = services.gateway,
                     .replacedCount = replacedCount,
                     .nodes = request.nodes,
                     .joins = request.joins};
    mLoan = CandidateLoan(std::move(fresh), shelf);
    return false;
}

/// Asks for the joins again; nothing remembers that they could not be read.
bool CandidateGraph::StayUnreadable(const Ids& joins) const
{
    return std::none_of(joins.begin(), joins.end(),
                        [this](const amd_id& join) { return mEndsReader.Read(join).has_value(); });
}

/// Returns whether the request still has the join cache of the shelf, with the joins it had. Asking
/// for what could not be read may let the host replace them.
bool CandidateGraph::IsUnchanged(const std::shared_ptr<CandidateShelf>& shelf,
                                 std::uint64_t replacedCount) const
{
    AQE_JoinCache* const cache = FindJoinCache(mEndsReader.GetServices().requestContext);
    if (cache == nullptr)
        return false;
    const JoinCacheAccess access(*cache);
    return access.Shelf() == shelf && access.Joins().GetReplacedCount() == replacedCount;
}

/// Returns whether the kept graph has the synthetic joins that the request would add, and no
/// others.
bool CandidateGraph::IsGraphUsable(const Request& request) const
{
    const LoadedCandidates& kept = mLoan.Get();
    if (!kept.isGraphPlain || kept.shortcutJoins.empty())
        return kept.isGraphPlain;
    auto* const shortcutInfo = mEndsReader.GetServices().shortcutInfo;
    if (shortcutInfo == nullptr || !request.hasShortcutJoins)
        return false;
    // A required one may have other ends in the join cache, which count then.
    const bool requiresSynthetic =
        std::any_of(request.requiredJoins.begin(), request.requiredJoins.end(),
                    [&kept](const amd_id& join) { return IsSynthetic(kept, join); });
    const std::vector<QEjoinInfo>& wanted = shortcutInfo->GetShortcutJoins();
    return !requiresSynthetic && std::equal(kept.shortcutJoins.begin(), kept.shortcutJoins.end(),
                                            wanted.begin(), wanted.end(), IsSame);
}

/// Makes the graph anew from what was read.
void CandidateGraph::RebuildGraph()
{
    LoadedCandidates& candidates = mLoan.Get();
    candidates.graph = AQE_I_UndirectedGraph::Create();
    candidates.shortcutJoins.clear();
    candidates.isGraphPlain = true;
    for (const amd_id& node : Sort(candidates.source.nodes))
        candidates.graph->AddNode(node);
    for (const CandidateJoin& edge : candidates.edges)
        AddEdge(*candidates.graph, edge.id, edge.join);
}

/// Makes the joins of favoured query subjects cheaper.
void CandidateGraph::AdjustWeights()
{
    if (!mEndsReader.HasFavouredSubjects())
        return;
    for (const CandidateJoin& edge : mLoan.Get().edges) {
        const int weight = mEndsReader.AdjustWeight(edge.join);
        if (weight != edge.join.weight)
            mLoan.SetWeight(edge.id, weight);
    }
}

void CandidateGraph::ReadAll(const Request& request)
{
    LoadedCandidates& candidates = mLoan.Get();
    const Ids sorted = Sort(request.nodes);
    for (const amd_id& node : sorted)
        candidates.graph->AddNode(node);
    candidates.edges.reserve(request.joins.size());
    // The first look at a weight reads a setting, which comes before the first join is read.
    if (!request.joins.empty())
        static_cast<void>(AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeJoin));
    for (const amd_id& join : request.joins) {
        auto read = mEndsReader.Read(join);
        if (!read) {
            candidates.unreadable.push_back(join);
            continue;
        }
        const int weight = mEndsReader.AdjustWeight(*read);
        if (!Contains(sorted, read->ends.left) || !Contains(sorted, read->ends.right))
            continue;
        candidates.edges.push_back({.id = join, .join = *read});
        if (weight != read->weight)
            mLoan.NoteWeight(candidates.edges.back());
        read->weight = weight;
        AddEdge(*candidates.graph, join, *read);
    }
}

void CandidateGraph::Favour(const Ids& favouredJoins)
{
    for (const amd_id& join : favouredJoins) {
        if (join.classCode == IdClassShortcutJoin || !mEndsReader.GetJoinEnds(join))
            continue;
        // A kept graph has synthetic joins before they are added.
        if (IsSynthetic(mLoan.Get(), join))
            continue;
        // One that comes only with the synthetic joins has no weight yet to go back to.
        if (mLoan.Get().graph->GetPathWeight({join}) == 0)
            mLoan.Get().isGraphPlain = false;
        mLoan.SetWeight(join, GetTakeFirstWeight());
    }
}

void CandidateGraph::Require(const Ids& requiredJoins, Ids& entities)
{
    AQE_I_UndirectedGraph& graph = *mLoan.Get().graph;
    for (const amd_id& join : requiredJoins) {
        const auto ends = mEndsReader.GetJoinEnds(join);
        if (!ends)
            continue;
        AddEntity(ends->right, entities);
        AddEntity(ends->left, entities);
        const WeighedJoin required{.ends = *ends, .weight = GetTakeFirstWeight()};
        AddEdge(mTree, join, required);
        if (graph.GetPathWeight({join}) == 0)
            mLoan.Get().isGraphPlain = false;
        graph.AddNode(ends->right);
        graph.AddNode(ends->left);
        // An edge that is there already stays as it is when it is added, and is only made cheaper.
        AddEdge(graph, join, required);
        mLoan.SetWeight(join, required.weight);
    }
}

void CandidateGraph::AddEntity(const amd_id& id, Ids& entities)
{
    if (std::find(entities.begin(), entities.end(), id) != entities.end())
        return;
    entities.push_back(id);
    mTree.AddNode(id);
}

void CandidateGraph::AddShortcutJoins()
{
    LoadedCandidates& candidates = mLoan.Get();
    auto* const shortcutInfo = mEndsReader.GetServices().shortcutInfo;
    if (shortcutInfo == nullptr || !candidates.shortcutJoins.empty())
        return;
    for (const QEjoinInfo& info : shortcutInfo->GetShortcutJoins()) {
        candidates.shortcutJoins.push_back({.id = info.joinId, .join = ToWeighedJoin(info)});
        AddEdge(*candidates.graph, info.joinId, candidates.shortcutJoins.back().join);
    }
}

void CandidateGraph::Avoid(const Ids& avoidedJoins)
{
    // The weight is asked for join by join: the first look at it reads a setting, which must not
    // happen where nothing is avoided.
    for (const amd_id& join : avoidedJoins)
        mLoan.SetWeight(join, AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone));
}

} // namespace qe
