#include "Toolkit/Ask/RowGraph.h"

#include "Source/Rules/Cardinality.h"

#include <algorithm>

namespace qe::tool {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

bool IsManyAt(const TableJoin& join, std::size_t end)
{
    return IsToMany(join.CardinalityAt(end));
}

} // namespace

RowGraph::RowGraph(const PathTables& path)
    : mPath(path), mSweep(path.GetJoins(), path.GetCount()), mEntities(path.GetCount(), kNone)
{
    FindEntities();
    FindUpSteps();
    for (std::size_t table = 0; table < path.GetCount() && path.IsAsked(table); ++table)
        mIsRepeated.push_back(!LeadsToAll(table));
}

void RowGraph::FindEntities()
{
    for (std::size_t table = 0; table < mPath.GetCount(); ++table) {
        if (mEntities[table] != kNone)
            continue;
        mEntities[table] = mMembers.size();
        Tables members{table};
        for (std::size_t next = 0; next < members.size(); ++next) {
            for (const std::size_t position : mSweep.GetTouching(members[next])) {
                const TableJoin& join = mSweep.GetJoin(position);
                if (IsManyAt(join, join.left) || IsManyAt(join, join.right))
                    continue;
                const std::size_t other = join.OtherEnd(members[next]);
                if (mEntities[other] == kNone) {
                    mEntities[other] = mMembers.size();
                    members.push_back(other);
                }
            }
        }
        std::sort(members.begin(), members.end());
        mMembers.push_back(std::move(members));
    }
}

void RowGraph::FindUpSteps()
{
    mUpSteps.resize(mMembers.size());
    for (const TableJoin& join : mPath.GetJoins()) {
        const bool leftIsMany = IsManyAt(join, join.left);
        if (leftIsMany == IsManyAt(join, join.right))
            continue;
        const std::size_t upper = mEntities[leftIsMany ? join.left : join.right];
        const std::size_t lower = mEntities[leftIsMany ? join.right : join.left];
        std::vector<UpStep>& steps = mUpSteps[lower];
        const bool isKnown = std::any_of(steps.begin(), steps.end(), [upper](const UpStep& step) {
            return step.upper == upper;
        });
        if (upper != lower && !isKnown)
            steps.push_back({upper, &join});
    }
}

bool RowGraph::IsAsked(std::size_t entity) const
{
    return mPath.IsAsked(mMembers[entity].front());
}

std::set<std::size_t> RowGraph::FindTops(std::size_t entity) const
{
    std::set<std::size_t> tops;
    std::set<std::size_t> seen{entity};
    for (std::vector<std::size_t> open{entity}; !open.empty();) {
        const std::size_t current = open.back();
        open.pop_back();
        if (IsTop(current))
            tops.insert(current);
        for (const UpStep& step : mUpSteps[current]) {
            if (seen.insert(step.upper).second)
                open.push_back(step.upper);
        }
    }
    return tops;
}

std::set<std::size_t> RowGraph::FindSide(std::size_t entity, std::size_t barrier) const
{
    std::set<std::size_t> side{entity};
    for (std::vector<std::size_t> open{entity}; !open.empty();) {
        const Tables& members = mMembers[open.back()];
        open.pop_back();
        for (const std::size_t table : members) {
            for (const std::size_t position : mSweep.GetTouching(table)) {
                const std::size_t other = mEntities[mSweep.GetJoin(position).OtherEnd(table)];
                if (other != barrier && side.insert(other).second)
                    open.push_back(other);
            }
        }
    }
    return side;
}

std::vector<std::set<std::size_t>> RowGraph::FindParts() const
{
    std::vector<std::set<std::size_t>> parts;
    std::set<std::size_t> seen;
    for (std::size_t entity = 0; entity < mMembers.size(); ++entity) {
        if (seen.count(entity) != 0)
            continue;
        parts.push_back(FindSide(entity, kNone));
        seen.insert(parts.back().begin(), parts.back().end());
    }
    return parts;
}

/// Returns whether to-one joins lead from the table to all others: a row of it has one of each.
bool RowGraph::LeadsToAll(std::size_t table) const
{
    std::vector<bool> isSingle(mPath.GetCount(), false);
    isSingle[table] = true;
    Tables single{table};
    for (std::size_t next = 0; next < single.size(); ++next) {
        for (const std::size_t position : mSweep.GetTouching(single[next])) {
            const TableJoin& join = mSweep.GetJoin(position);
            const std::size_t to = join.OtherEnd(single[next]);
            if (isSingle[to] || IsManyAt(join, to))
                continue;
            isSingle[to] = true;
            single.push_back(to);
        }
    }
    return single.size() == mPath.GetCount();
}

RowGraph::Joins RowGraph::FindRepeating(std::size_t table) const
{
    std::set<const TableJoin*> repeating;
    mSweep.Reach(table, [&repeating](const TableJoin& join, std::size_t to) {
        if (IsManyAt(join, to))
            repeating.insert(&join);
    });
    return {repeating.begin(), repeating.end()};
}

RowGraph::Joins RowGraph::FindManyToMany() const
{
    Joins joins;
    for (const TableJoin& join : mPath.GetJoins()) {
        if (IsManyAt(join, join.left) && IsManyAt(join, join.right))
            joins.push_back(&join);
    }
    return joins;
}

} // namespace qe::tool
