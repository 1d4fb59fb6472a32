#include "Tests/Source/Reference/RefinerReference.h"

#include "AQE_I_FactFinder.h"
#include "AQE_JoinCache.h"
#include "AUT_LogException.h"
#include "HBNException.h"
#include "IdClass.h"
#include "PathSelection.h"
#include "Ranking/FolderDistance.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>

namespace qe::test {

namespace {

/// Returns the object when its own id is of that class, whatever class was asked for.
template <typename T>
T* LookUp(amdi_gateway* gateway, const amd_id& id, IdClass wanted)
{
    amdi_object* const object = gateway->GetObject(id);
    return object != nullptr && object->GetId().classCode == wanted ? dynamic_cast<T*>(object)
                                                                    : nullptr;
}

Ids Concatenate(Ids first, const Ids& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Keeps the indices whose number is least.
template <typename Number>
std::vector<std::size_t> KeepLeast(const std::vector<std::size_t>& indices, const Number& numberOf)
{
    std::map<int, std::vector<std::size_t>> byNumber;
    for (const std::size_t index : indices)
        byNumber[numberOf(index)].push_back(index);
    return byNumber.empty() ? indices : byNumber.begin()->second;
}

} // namespace

void RefinerReference::ComputeJoinPath(const Ids& querySubjects, const Ids& favouredJoins,
                                       const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                                       const Ids& favouredSubjects, Ids& joinPath)
{
    if (querySubjects.size() < 2)
        return;
    AQE_JoinCache* const cache =
        mServices.context == nullptr ? nullptr : mServices.context->GetJoinCache();
    if (cache != nullptr &&
        cache->GetJoinPath(querySubjects, favouredJoins, requiredJoins, joinPath))
        return;
    const TreeLists lists{.subjects = querySubjects,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins,
                          .favouredSubjects = favouredSubjects};
    const JoinTreeReference tree(mServices, lists, ETreeUse::Standard);
    const std::vector<Ids> paths = tree.GetJoinPaths();
    if (paths.empty() || paths.front().empty())
        return;
    if (tree.GetPathWeight(paths.front()) == -1 && mServices.governors == nullptr)
        return;
    const Ids chosen = Choose(tree, paths, lists, mSwitches, 185);
    joinPath = Concatenate(joinPath, Readable(chosen));
    if (cache != nullptr)
        cache->CacheJoinPath(querySubjects, favouredJoins, requiredJoins, joinPath);
}

void RefinerReference::GetJoinedQuerySubjects(const Ids& querySubjects, const Ids& nodes,
                                              const Ids& joins, Ids& joinedQuerySubjects)
{
    const TreeLists lists{.subjects = querySubjects, .nodes = nodes, .joins = joins};
    const JoinTreeReference tree(mServices, lists, ETreeUse::ConnectivityOnly);
    std::set<amd_id> found(querySubjects.begin(), querySubjects.end());
    for (const amd_id& join : tree.GetConnectingJoins())
        CollectEnds(join, found);
    joinedQuerySubjects.insert(joinedQuerySubjects.end(), found.begin(), found.end());
}

void RefinerReference::CollectEnds(const amd_id& join, std::set<amd_id>& ends) const
{
    const auto addEnds = [&ends](const auto* object) {
        if (object != nullptr)
            ends.insert({object->GetLeftId(), object->GetRightId()});
    };
    addEnds(LookUp<amdi_relationship>(mServices.gateway, join, IdClassRelationship));
    const auto* shortcut =
        LookUp<amdi_relationshipShortcut>(mServices.gateway, join, IdClassRelationshipShortcut);
    addEnds(shortcut);
    if (shortcut != nullptr)
        addEnds(LookUp<amdi_relationship>(mServices.gateway, shortcut->GetReferencedId(),
                                          IdClassRelationship));
}

void RefinerReference::ComputeJoinPathBetween(const Ids& firstSet, const Ids& avoidedJoins,
                                              const Ids& secondSet, const Ids& furtherAvoidedJoins,
                                              const Ids& favouredJoins, const Ids& requiredJoins,
                                              const Ids& nodes, const Ids& joins, Ids& joinPath,
                                              int& resultWeight, Ids& endPair)
{
    joinPath.clear();
    const TreeLists lists{.subjects = firstSet,
                          .secondSet = secondSet,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins,
                          .avoidedJoins = Concatenate(avoidedJoins, furtherAvoidedJoins)};
    const JoinTreeReference tree(mServices, lists, ETreeUse::TwoSet);
    const std::vector<Ids>& paths = tree.twoSetPaths;
    resultWeight = tree.twoSetWeight.value_or(-1);
    if (paths.empty())
        return;
    const Ids chosen = Choose(tree, paths, lists, {mSwitches.facts, false}, 303);
    const auto place = std::find(paths.begin(), paths.end(), chosen) - paths.begin();
    const auto& [first, second] = tree.twoSetPairs.at(static_cast<std::size_t>(place));
    endPair.push_back(first);
    endPair.push_back(second);
    joinPath = Readable(chosen);
}

bool RefinerReference::ComputeBestJoinPaths(const Ids& querySubjects, const Ids& favouredJoins,
                                            const Ids& requiredJoins, const Ids& nodes,
                                            const Ids& joins, std::vector<Ids>& bestPaths,
                                            const Ids& avoidedJoins, const Ids& favouredSubjects)
{
    if (querySubjects.size() < 2)
        return true;
    const TreeLists lists{.subjects = querySubjects,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins,
                          .avoidedJoins = avoidedJoins,
                          .favouredSubjects = favouredSubjects};
    const JoinTreeReference tree(mServices, lists, ETreeUse::Standard);
    const std::vector<Ids> paths = tree.GetJoinPaths();
    if (paths.empty() || paths.front().empty() || tree.GetPathWeight(paths.front()) == -1)
        return false;
    if (GetFFJoinsMode() == 3) {
        bestPaths = paths;
        return tree.IsConnected();
    }
    for (const std::size_t index : SelectBest(tree, paths, lists))
        bestPaths.push_back(paths[index]);
    return true;
}

void RefinerReference::ComputeBestJoinPathsBetween(const Ids& firstSet, const Ids& avoidedJoins,
                                                   const Ids& secondSet,
                                                   const Ids& furtherAvoidedJoins,
                                                   const Ids& favouredJoins,
                                                   const Ids& requiredJoins, const Ids& nodes,
                                                   const Ids& joins, std::vector<Ids>& bestPaths,
                                                   int& resultWeight, EndPairs& endPairs)
{
    bestPaths.clear();
    const TreeLists lists{.subjects = firstSet,
                          .secondSet = secondSet,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins,
                          .avoidedJoins = Concatenate(avoidedJoins, furtherAvoidedJoins)};
    const JoinTreeReference tree(mServices, lists, ETreeUse::TwoSet);
    const std::vector<Ids>& paths = tree.twoSetPaths;
    resultWeight = tree.twoSetWeight.value_or(-1);
    if (paths.empty() || paths.front().empty())
        return;
    for (const std::size_t index : SelectBest(tree, paths, lists)) {
        bestPaths.push_back(paths[index]);
        endPairs.push_back(tree.twoSetPairs[index]);
    }
}

bool RefinerReference::GetJoinTreeJoins(amdi_gateway* gateway, const Ids& querySubjects,
                                        const Ids& favouredJoins, const Ids& requiredJoins,
                                        const Ids& nodes, const Ids& joins,
                                        AQE_Governors* governors,
                                        AQE_RequestContext* requestContext, const Ids* avoidedJoins,
                                        Ids& treeJoins)
{
    const TreeLists lists{.subjects = querySubjects,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins,
                          .avoidedJoins = avoidedJoins == nullptr ? Ids() : *avoidedJoins};
    const JoinTreeReference tree({gateway, governors, requestContext, mServices.shortcutInfo},
                                 lists, ETreeUse::ShortcutAware);
    treeJoins = Concatenate(treeJoins, tree.GetTreeJoins());
    return !treeJoins.empty();
}

bool RefinerReference::LookUpJoinInfo(const amd_id& join, QEjoinInfo& info) const
{
    if (join.classCode != IdClassShortcutJoin)
        return GetJoinInfo(mServices.gateway, mServices.context, join, info);
    return mServices.shortcutInfo != nullptr && mServices.shortcutInfo->GetJoinInfo(join, info);
}

Ids RefinerReference::Readable(const Ids& path) const
{
    Ids readable;
    std::copy_if(path.begin(), path.end(), std::back_inserter(readable), [this](const amd_id& id) {
        QEjoinInfo info;
        return LookUpJoinInfo(id, info);
    });
    return readable;
}

int RefinerReference::Weigh(const JoinTreeReference& tree, const Ids& path,
                            const TreeLists& lists) const
{
    const bool isByFolder = ReadSetting("General Options", "AdjustWeightByFolder", 0) != 0;
    int weight = 0;
    for (const amd_id& join : path) {
        const bool isExempt =
            join.classCode == IdClassSpecJoin || Contains(lists.requiredJoins, join) ||
            Contains(lists.favouredJoins, join) || join.classCode == IdClassShortcutJoin;
        weight += tree.GetPathWeight({join}) * (isByFolder ? 1000 : 1);
        if (isByFolder && !isExempt)
            weight += FolderDistance(join, mServices.gateway, mServices.context);
    }
    return weight;
}

int RefinerReference::CountFactTables(const Ids& path) const
{
    const AUT_RefPtr<AQE_I_FactFinder> finder = AQE_I_FactFinder::Create();
    int penalty = 0;
    for (const amd_id& join : path) {
        QEjoinInfo info;
        if (!LookUpJoinInfo(join, info))
            continue;
        int left = info.leftCardinality.maximum;
        int right = info.rightCardinality.maximum;
        if (left == BMT_I_Association::CardinalityMany &&
            right == BMT_I_Association::CardinalityMany) {
            penalty += 10000;
            left = right = BMT_I_Association::CardinalityOne;
        }
        finder->AddJoin(join, info.leftQuerySubject, left, info.rightQuerySubject, right);
    }
    Ids facts;
    finder->GetFacts(facts);
    return static_cast<int>(facts.size()) + penalty;
}

int RefinerReference::CountBranches(const Ids& path) const
{
    std::map<amd_id, int> counts;
    for (const amd_id& join : path) {
        QEjoinInfo info;
        if (!LookUpJoinInfo(join, info))
            continue;
        ++counts[info.leftQuerySubject];
        ++counts[info.rightQuerySubject];
    }
    return std::accumulate(counts.begin(), counts.end(), 0, [](int sum, const auto& entry) {
        return sum + std::max(entry.second - 2, 0);
    });
}

std::set<I18NString> RefinerReference::NamesOf(const Ids& path) const
{
    std::set<I18NString> names;
    for (const amd_id& join : path) {
        QEjoinInfo info;
        info.name = "Dummy";
        static_cast<void>(LookUpJoinInfo(join, info));
        names.insert(info.name);
    }
    return names;
}

RefinerReference::Descriptors RefinerReference::Rank(const std::vector<Ids>& paths,
                                                     const std::vector<int>& weights,
                                                     RankingSwitches switches) const
{
    using Group = std::tuple<int, int, int>;
    using Names = std::set<I18NString>;
    std::set<std::tuple<Group, bool, Names, std::size_t>> ranked;
    std::set<std::pair<Group, Names>> known;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        const Ids& path = paths[index];
        const Group group(weights[index], switches.facts ? CountFactTables(path) : 1,
                          switches.straight ? CountBranches(path) : 0);
        const Names names = NamesOf(path);
        // What repeats the names of another stands behind the group, in its old order.
        const bool isRepeat = !known.emplace(group, names).second;
        ranked.emplace(group, isRepeat, isRepeat ? Names() : names, index);
    }
    const int heaviest = std::max(*std::max_element(weights.begin(), weights.end()), -1);
    const int divisor = heaviest == 0 ? 10000 : heaviest;
    Descriptors descriptors;
    for (const auto& entry : ranked) {
        const std::size_t index = std::get<3>(entry);
        const int rank = 100 - weights[index] * 100 / divisor;
        descriptors.emplace_back(new AQE_JoinPathDescriptor(paths[index], rank, weights[index]));
    }
    return descriptors;
}

Ids RefinerReference::Choose(const JoinTreeReference& tree, const std::vector<Ids>& paths,
                             const TreeLists& lists, RankingSwitches switches, int line) const
{
    if (paths.size() == 1)
        return paths.front();
    std::vector<int> weights;
    for (const Ids& path : paths)
        weights.push_back(Weigh(tree, path, lists));
    const Descriptors descriptors = Rank(paths, weights, switches);
    const std::size_t choice = mSelector == nullptr ? 0 : mSelector->SelectPath(descriptors);
    if (choice >= descriptors.size()) {
        HBNException error(1, 1);
        HBNAddMessages(error, 0xA9EC593C, 0, "", "", "", "", "", "");
        AUT_LogException(error, "Source/Refiner", line);
        ORV_THROW(error, "Source/Refiner", line, "QE");
    }
    Ids chosen;
    descriptors[choice]->GetJoinPath(chosen);
    return chosen;
}

std::vector<std::size_t> RefinerReference::SelectBest(const JoinTreeReference& tree,
                                                      const std::vector<Ids>& paths,
                                                      const TreeLists& lists) const
{
    std::vector<std::size_t> all(paths.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const auto lightest =
        KeepLeast(all, [&](std::size_t index) { return Weigh(tree, paths[index], lists); });
    return KeepLeast(lightest, [&](std::size_t index) { return CountFactTables(paths[index]); });
}

} // namespace qe::test
