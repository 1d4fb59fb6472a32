#include "Tests/Fuzz/RefinerRules.h"

#include "IdClass.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

namespace qe::test {

namespace {

constexpr std::int64_t kBarred = 8888;
constexpr int kCrossProductFailure = 101;
constexpr int kChoiceFailure = 1;
constexpr int kFactFailure = -1;
/// The line of the assertion.
constexpr int kUnreadableJoinFailure = 1305;

int WeightOf(AQE_I_Refiner::EEdgeType type)
{
    return AQE_I_Refiner::GetEdgeWeightForType(type);
}

bool IsBetween(ERefinerOperation operation)
{
    return operation == ERefinerOperation::PathBetween ||
           operation == ERefinerOperation::BestPathsBetween;
}

std::string CheckCandidates(const PlainGraph& graph, const Ids& path)
{
    if (std::any_of(path.begin(), path.end(),
                    [&graph](const amd_id& join) { return graph.Find(join) == nullptr; }))
        return "a join of the path is no candidate";
    if (std::set<amd_id>(path.begin(), path.end()).size() != path.size())
        return "a join stands twice in a path";
    return "";
}

bool IsKnownBound(int bound)
{
    return bound >= BMT_I_Association::CardinalityZero &&
           bound <= BMT_I_Association::CardinalityMany;
}

} // namespace

RefinerRules::RefinerRules(const RefinerCase& input, RefinerRun& run)
    : mCase(input), mRun(run), mTerminals(input.lists.subjects.begin(), input.lists.subjects.end())
{
    for (const amd_id& join : mCase.model->GetJoins()) {
        if (auto info = mRun.ReadJoin(join))
            mInfos.emplace(join, std::move(*info));
    }
    for (const amd_id& join : mCase.lists.requiredJoins) {
        if (const Info* const info = Find(join))
            mTerminals.insert({info->leftQuerySubject, info->rightQuerySubject});
    }
}

const RefinerRules::Info* RefinerRules::Find(const amd_id& join) const
{
    const auto found = mInfos.find(join);
    return found == mInfos.end() ? nullptr : &found->second;
}

int RefinerRules::AdjustWeight(const Info& info) const
{
    const Ids& favoured = mCase.lists.favouredSubjects;
    if (info.weight <= WeightOf(AQE_I_Refiner::EdgeTypeBothEndsInSet) || favoured.empty())
        return info.weight;
    const auto isIn = [&favoured](const amd_id& id) {
        return std::count(favoured.begin(), favoured.end(), id) != 0;
    };
    int ends = int{isIn(info.leftQuerySubject)} + int{isIn(info.rightQuerySubject)};
    if (ends == 0) {
        for (const amd_id& end : {info.leftQuerySubject, info.rightQuerySubject})
            ends += int{end.classCode == IdClassShortcut && isIn(mRun.FindQuerySubject(end))};
    }
    if (ends == 0)
        return info.weight;
    return WeightOf(ends == 1 ? AQE_I_Refiner::EdgeTypeOneEndInSet
                              : AQE_I_Refiner::EdgeTypeBothEndsInSet);
}

void RefinerRules::AddRequired(PlainGraph& graph) const
{
    for (const amd_id& join : mCase.lists.requiredJoins) {
        const Info* const info = Find(join);
        if (info == nullptr)
            continue;
        graph.AddEdge(join, {.left = info->leftQuerySubject, .right = info->rightQuerySubject});
        graph.SetWeight(join, WeightOf(AQE_I_Refiner::EdgeTypeRelationship136));
    }
}

PlainGraph RefinerRules::MakeGraph(ERefinerOperation operation) const
{
    const Lists& lists = mCase.lists;
    const bool isBetween = IsBetween(operation);
    PlainGraph graph;
    for (const amd_id& node : lists.nodes)
        graph.AddNode(node);
    for (const amd_id& join : lists.joins) {
        const Info* const info = Find(join);
        if (info == nullptr || !graph.HasNode(info->leftQuerySubject) ||
            !graph.HasNode(info->rightQuerySubject))
            continue;
        const bool isAdjusted = !isBetween && operation != ERefinerOperation::TreeJoins;
        graph.AddEdge(join, {.left = info->leftQuerySubject,
                             .right = info->rightQuerySubject,
                             .weight = isAdjusted ? AdjustWeight(*info) : info->weight});
    }
    for (const amd_id& join : lists.favouredJoins) {
        if (Find(join) != nullptr)
            graph.SetWeight(join, WeightOf(AQE_I_Refiner::EdgeTypeRelationship136));
    }
    if (!isBetween)
        AddRequired(graph);
    for (const Info& info : mRun.GetShortcutJoins())
        graph.AddEdge(info.joinId, {.left = info.leftQuerySubject,
                                    .right = info.rightQuerySubject,
                                    .weight = info.weight});
    if (operation != ERefinerOperation::JoinPath) {
        for (const amd_id& join : lists.avoidedJoins)
            graph.SetWeight(join, kBarred);
    }
    if (isBetween) {
        for (const amd_id& join : lists.furtherAvoidedJoins)
            graph.SetWeight(join, kBarred);
    }
    return graph;
}

std::string RefinerRules::FindFault(ERefinerOperation operation,
                                    const RefinerOutcome& outcome) const
{
    const PlainGraph graph = MakeGraph(operation);
    if (outcome.failure)
        return CheckFailure(operation, graph, outcome);
    const std::vector<Ids> one{outcome.path};
    switch (operation) {
    case ERefinerOperation::JoinPath:
        return CheckTrees(graph, outcome.path.empty() ? std::vector<Ids>() : one);
    case ERefinerOperation::JoinedSubjects:
        return CheckJoinedSubjects(outcome.path);
    case ERefinerOperation::PathBetween:
        return CheckBetween(graph, outcome, outcome.path.empty() ? std::vector<Ids>() : one);
    case ERefinerOperation::BestPaths:
        if (mCase.lists.subjects.size() < 2)
            return outcome.result && outcome.paths.empty() ? "" : "one subject has paths";
        if (outcome.result && outcome.paths.empty())
            return "there are best paths and there are none";
        return CheckTrees(graph, outcome.paths);
    case ERefinerOperation::BestPathsBetween:
        return CheckBetween(graph, outcome, outcome.paths);
    case ERefinerOperation::TreeJoins:
        return CheckTreeJoins(graph, outcome);
    }
    return "";
}

PlainGraph RefinerRules::GetRequired() const
{
    PlainGraph required;
    AddRequired(required);
    return required;
}

bool RefinerRules::IsConnectedByRequired() const
{
    const PlainGraph required = GetRequired();
    return required.Connects(required.ListEdges(), mTerminals);
}

bool RefinerRules::MayFailToRank() const
{
    // What is required is taken, also a join of a subject to itself.
    const PlainGraph required = GetRequired();
    return required.HasRing(required.ListEdges()) ||
           std::any_of(mInfos.begin(), mInfos.end(), [](const auto& entry) {
               return !IsKnownBound(entry.second.leftCardinality.maximum) ||
                      !IsKnownBound(entry.second.rightCardinality.maximum);
           });
}

bool RefinerRules::MayCloseRing(const PlainGraph& graph) const
{
    return !mCase.newAlgo && !mCase.lists.requiredJoins.empty() &&
           graph.HasRing(graph.ListEdges()) && !graph.TreeBound(mTerminals);
}

std::string RefinerRules::CheckFailure(ERefinerOperation operation, const PlainGraph& graph,
                                       const RefinerOutcome& outcome) const
{
    if (!outcome.path.empty() || !outcome.paths.empty() || !outcome.ends.empty())
        return "an operation that failed has written an answer";
    switch (*outcome.failure) {
    case kCrossProductFailure:
        if (IsBetween(operation) || !mCase.governors || mCase.governors->crossProductAllowed != 2)
            return "a cross product is refused that nobody forbids";
        return graph.TreeBound(mTerminals) ? "subjects that can be connected are refused" : "";
    case kChoiceFailure:
        return mCase.choice ? "" : "a choice is refused that nobody made";
    case kUnreadableJoinFailure:
        // The growth by shortest paths knows joins over shortcuts that it cannot read again.
        return mCase.newAlgo || mRun.GetShortcutJoins().empty() ? "a join cannot be read" : "";
    case kFactFailure:
        return MayFailToRank() || MayCloseRing(graph)
                   ? ""
                   : "facts cannot be counted though all cardinalities are known";
    default:
        return "an unknown failure";
    }
}

std::string RefinerRules::CheckTrees(const PlainGraph& graph, const std::vector<Ids>& paths) const
{
    std::set<std::set<amd_id>> seen;
    for (const Ids& path : paths) {
        if (const std::string fault = CheckCandidates(graph, path); !fault.empty())
            return fault;
        if (!seen.emplace(path.begin(), path.end()).second)
            return "a path is listed twice";
    }
    if (mCase.lists.subjects.size() < 2)
        return paths.empty() ? "" : "one subject has a path";
    if (mCase.newAlgo)
        return CheckCheapest(graph, paths);
    for (const Ids& path : paths) {
        if (graph.Connects(path, mTerminals) && !graph.IsTree(path))
            return "a path that connects the subjects is no tree";
    }
    return "";
}

std::string RefinerRules::CheckCheapest(const PlainGraph& graph,
                                        const std::vector<Ids>& paths) const
{
    const auto bound = mCase.lists.nodes.empty() ? std::nullopt : graph.TreeBound(mTerminals);
    if (!bound)
        return paths.empty() ? "" : "subjects that cannot be connected have a path";
    if (IsConnectedByRequired()) {
        const std::size_t count = paths.empty() ? 0 : paths.front().size();
        return count == GetRequired().ListEdges().size() ? "" : "not all required joins are taken";
    }
    if (paths.empty())
        return "subjects that can be connected have no path";
    const std::int64_t weight = graph.WeightOf(paths.front());
    for (const Ids& path : paths) {
        if (!graph.IsTree(path) || !graph.Connects(path, mTerminals))
            return "a path is no tree that connects the subjects";
        if (graph.WeightOf(path) != weight || weight > *bound)
            return "a path is heavier than need be: " + std::to_string(graph.WeightOf(path)) +
                   ", with a tree of at most " + std::to_string(*bound);
    }
    return "";
}

std::string RefinerRules::CheckJoinedSubjects(const Ids& joined) const
{
    if (std::adjacent_find(joined.begin(), joined.end(), std::greater_equal<>()) != joined.end())
        return "joined subjects are not in order, each once";
    std::set<amd_id> known(mCase.lists.subjects.begin(), mCase.lists.subjects.end());
    if (!std::includes(joined.begin(), joined.end(), known.begin(), known.end()))
        return "a subject is missing among the joined subjects";
    for (const amd_id& join : mCase.lists.joins) {
        const model::ObjectRecord& record = *mCase.model->Find(join);
        known.insert({record.left, record.right});
        if (const auto* const referenced = mCase.model->Find(record.referenced))
            known.insert({referenced->left, referenced->right});
    }
    return std::includes(known.begin(), known.end(), joined.begin(), joined.end())
               ? ""
               : "a joined subject is at no join";
}

std::int64_t RefinerRules::DistanceBetween(const PlainGraph& graph) const
{
    const Lists& lists = mCase.lists;
    if (lists.subjects.empty() || lists.secondSet.empty() || lists.nodes.empty() ||
        lists.joins.empty())
        return -1;
    std::int64_t least = kBarred;
    for (const amd_id& from : lists.subjects) {
        for (const amd_id& to : lists.secondSet) {
            if (from != to)
                least = std::min(least, graph.Distance(from, to).value_or(kBarred));
        }
    }
    return least;
}

std::string RefinerRules::CheckBetween(const PlainGraph& graph, const RefinerOutcome& outcome,
                                       const std::vector<Ids>& paths) const
{
    const std::int64_t expected = DistanceBetween(graph);
    if (outcome.weight != expected)
        return "the sets are not so far apart: " + std::to_string(outcome.weight) + ", not " +
               std::to_string(expected);
    const bool isReached = expected >= 0 && expected < kBarred;
    if (paths.size() != outcome.ends.size() || paths.empty() == isReached)
        return "paths between the sets do not come with their ends";
    const Lists& lists = mCase.lists;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (const std::string fault = CheckCandidates(graph, paths[i]); !fault.empty())
            return fault;
        const auto& [from, to] = outcome.ends[i];
        if (std::count(lists.subjects.begin(), lists.subjects.end(), from) == 0 ||
            std::count(lists.secondSet.begin(), lists.secondSet.end(), to) == 0)
            return "an end of a path is outside its set";
        if (!graph.IsWalk(paths[i], from, to) || !graph.IsTree(paths[i]))
            return "a path does not lead from end to end";
        if (graph.WeightOf(paths[i]) != expected)
            return "a path is longer than it is told to be";
    }
    return "";
}

std::string RefinerRules::CheckTreeJoins(const PlainGraph& graph,
                                         const RefinerOutcome& outcome) const
{
    const Lists& lists = mCase.lists;
    if (const std::string fault = CheckCandidates(graph, outcome.path); !fault.empty())
        return fault;
    if (outcome.result != !outcome.path.empty())
        return "the joins of a tree are there and are not";
    if (lists.subjects.empty() || lists.nodes.empty())
        return outcome.path.empty() ? "" : "there is a tree over nothing";
    const amd_id& first = lists.subjects.front();
    for (const amd_id& terminal : mTerminals) {
        if (graph.Distance(first, terminal) && !graph.Connects(outcome.path, {first, terminal}))
            return "a subject that can be reached is not in the tree";
    }
    return !lists.requiredJoins.empty() || graph.IsTree(outcome.path) ? "" : "the tree is no tree";
}

} // namespace qe::test
