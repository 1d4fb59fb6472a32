#include "Rules/FactGraph.h"

#include "BMT_I_Association.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <set>

namespace qe {
namespace {

template <typename T>
bool Contains(const std::vector<T>& values, const T& value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

template <typename T>
void AppendOnce(std::vector<T>& values, const T& value)
{
    if (!Contains(values, value))
        values.push_back(value);
}

enum class ESide
{
    ToOne,
    ToMany,
    Unusable
};

ESide ToSide(std::int32_t maximum)
{
    switch (maximum) {
    case BMT_I_Association::CardinalityZero:
    case BMT_I_Association::CardinalityOne:
        return ESide::ToOne;
    case BMT_I_Association::CardinalityMany:
        return ESide::ToMany;
    default:
        return ESide::Unusable;
    }
}

void PrintIds(const FactNode& node, std::ostream& out)
{
    out << "Id(s): ";
    for (const amd_id& id : node.mIds)
        out << ' ' << ToText(id);
    out << std::endl;
}

/// Prints `node` below the nodes of `path`, the last of which is its parent.
void PrintTree(const FactNode& node, std::vector<const FactNode*>& path, std::ostream& out)
{
    for (std::size_t depth = 0; depth < path.size(); ++depth)
        out << "    ";
    PrintIds(node, out);
    if (std::find(path.begin(), path.end(), &node) != path.end())
        return;
    path.push_back(&node);
    for (const FactNode* const child : node.mChildren)
        PrintTree(*child, path, out);
    path.pop_back();
}

} // namespace

EFactJoin FactGraph::AddJoin(const FactJoinEnd& left, const FactJoinEnd& right)
{
    const ESide leftSide = ToSide(left.maximum);
    const ESide rightSide = ToSide(right.maximum);
    if (leftSide == ESide::Unusable)
        return EFactJoin::LeftUnusable;
    if (rightSide == ESide::Unusable)
        return leftSide == ESide::ToOne ? EFactJoin::RightUnusableBesideOne
                                        : EFactJoin::RightUnusableBesideMany;
    if (leftSide == ESide::ToMany && rightSide == ESide::ToMany)
        return EFactJoin::ManyToMany;
    if (leftSide == ESide::ToMany)
        return AddOneToManyJoin(right.subject, left.subject);
    if (rightSide == ESide::ToMany)
        return AddOneToManyJoin(left.subject, right.subject);
    AddOneToOneJoin(left.subject, right.subject);
    return EFactJoin::Added;
}

EFactJoin FactGraph::AddOneToManyJoin(std::uint32_t one, std::uint32_t many)
{
    FactNode* manyNode = GetNode(mSubjects[many]);
    const bool manyIsNew = manyNode == nullptr;
    if (manyIsNew)
        manyNode = &MakeNode(many);
    FactNode* oneNode = GetNode(mSubjects[one]);
    const bool oneIsNew = oneNode == nullptr;
    if (oneIsNew)
        oneNode = &MakeNode(one);

    AppendOnce(oneNode->mParents, manyNode);
    if (Contains(manyNode->mChildren, oneNode))
        return EFactJoin::Added;
    manyNode->mChildren.push_back(oneNode);
    RemoveRoot(*oneNode);
    if (manyIsNew)
        mRoots.push_back(manyNode);
    // A join with a new query subject closes no cycle, unless that one is joined to itself.
    const bool isCyclic =
        ((!oneIsNew && (!manyIsNew || one == many)) || mMayBeCyclic) &&
        (IsFoundAbove(*manyNode, mSubjects[many].id) || IsFoundAbove(*oneNode, mSubjects[one].id));
    mMayBeCyclic = mMayBeCyclic || isCyclic;
    return isCyclic ? EFactJoin::Cyclic : EFactJoin::Added;
}

/// Returns whether `id` belongs to a node above `node`. Each node is walked once: merged nodes may
/// be their own parents, and a walk along every path would take exponential time in a lattice of
/// dimensions.
bool FactGraph::IsFoundAbove(const FactNode& node, const amd_id& id)
{
    mVisits.resize(mNodes.size(), 0);
    ++mWalkCount;
    mPending.assign(1, &node);
    while (!mPending.empty()) {
        const FactNode* const below = mPending.back();
        mPending.pop_back();
        for (const FactNode* const above : below->mParents) {
            if (mVisits[above->mNumber] == mWalkCount)
                continue;
            if (Contains(above->mIds, id))
                return true;
            mVisits[above->mNumber] = mWalkCount;
            mPending.push_back(above);
        }
    }
    return false;
}

void FactGraph::AddOneToOneJoin(std::uint32_t a, std::uint32_t b)
{
    FactNode* const nodeOfA = GetNode(mSubjects[a]);
    FactNode* const nodeOfB = GetNode(mSubjects[b]);
    if (nodeOfA == nullptr && nodeOfB == nullptr) {
        FactNode& node = MakeNode(a);
        AddToNode(b, node);
        mRoots.push_back(&node);
    } else if (nodeOfB == nullptr) {
        AddToNode(b, *nodeOfA);
    } else if (nodeOfA == nullptr) {
        AddToNode(a, *nodeOfB);
    } else if (nodeOfA == nodeOfB) {
        return;
    } else if (nodeOfA->mParents.empty() && !nodeOfB->mParents.empty()) {
        MergeNodes(*nodeOfA, *nodeOfB, mSubjects[a].id);
    } else {
        MergeNodes(*nodeOfB, *nodeOfA, mSubjects[b].id);
    }
}

void FactGraph::Clear() noexcept
{
    mNodeCount = 0;
    ++mGraphNumber;
    mRoots.clear();
    mMayBeCyclic = false;
}

std::uint32_t FactGraph::GetNumber(const amd_id& id)
{
    const auto known = mNumberById.find(id);
    if (known != mNumberById.end())
        return known->second;
    const auto number = static_cast<std::uint32_t>(mSubjects.size());
    mSubjects.push_back({.id = id});
    mNumberById.emplace(id, number);
    return number;
}

FactNode* FactGraph::Find(const amd_id& id) const
{
    const auto found = mNumberById.find(id);
    return found == mNumberById.end() ? nullptr : GetNode(mSubjects[found->second]);
}

FactNode* FactGraph::GetNode(const Subject& subject) const
{
    return subject.graphNumber == mGraphNumber ? subject.node : nullptr;
}

void FactGraph::Name(Subject& subject, FactNode& node)
{
    subject.node = &node;
    subject.graphNumber = mGraphNumber;
}

FactNode& FactGraph::MakeNode(std::uint32_t subject)
{
    if (mNodeCount == mNodes.size())
        mNodes.push_back(std::make_unique<FactNode>());
    FactNode& node = *mNodes[mNodeCount];
    node.mNumber = mNodeCount;
    node.mParents.clear();
    node.mIds.clear();
    node.mChildren.clear();
    AddToNode(subject, node);
    ++mNodeCount;
    return node;
}

void FactGraph::AddToNode(std::uint32_t subject, FactNode& node)
{
    node.mIds.push_back(mSubjects[subject].id);
    Name(mSubjects[subject], node);
}

void FactGraph::MergeNodes(FactNode& from, FactNode& into, const amd_id& id)
{
    // The parents keep listing `from`: their dimensions stay those of the time before the merge.
    for (FactNode* const parent : from.mParents)
        AppendOnce(into.mParents, parent);
    AppendOnce(into.mIds, id);
    for (const amd_id& fromId : from.mIds) {
        AppendOnce(into.mIds, fromId);
        Name(mSubjects[GetNumber(fromId)], into);
    }
    for (FactNode* const child : from.mChildren) {
        AppendOnce(into.mChildren, child);
        std::erase(child->mParents, &from);
        AppendOnce(child->mParents, &into);
    }
    mMayBeCyclic = true;
    RemoveRoot(from);
}

void FactGraph::RemoveRoot(const FactNode& node)
{
    const auto found = std::find(mRoots.begin(), mRoots.end(), &node);
    if (found != mRoots.end())
        mRoots.erase(found);
}

void FactGraph::Dump(std::ostream& out) const
{
    out << "Nodes:" << std::endl;
    for (const auto& [id, number] : mNumberById) {
        const FactNode* const node = GetNode(mSubjects[number]);
        if (node == nullptr)
            continue;
        out << ToText(id) << " --> ";
        PrintIds(*node, out);
    }
    for (const FactNode* const root : mRoots) {
        out << "FactRoot:" << std::endl;
        std::vector<const FactNode*> path;
        PrintTree(*root, path, out);
    }
}

} // namespace qe
