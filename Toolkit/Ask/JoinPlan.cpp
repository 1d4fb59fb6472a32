#include "Toolkit/Ask/JoinPlan.h"

#include "IdClass.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Ask/SubjectGroups.h"

#include <algorithm>
#include <set>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

Ids ListEnds(const Answer& answer, const Ids& path)
{
    Ids ends;
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = answer.FindJoin(id))
            ends.insert(ends.end(), {join->left, join->right});
    }
    return ends;
}

/// Returns the subjects of the question that a statement is about.
Ids ListAsked(const Answer& answer, const Ids& ends)
{
    if (answer.endPairs.empty())
        return answer.terminals;
    // Of two sets only those are part of a statement that the path reaches.
    if (ends.empty())
        return {answer.endPairs.front().first, answer.endPairs.front().second};
    Ids asked = answer.terminals;
    asked.insert(asked.end(), answer.secondSet.begin(), answer.secondSet.end());
    const std::set<amd_id> reached(ends.begin(), ends.end());
    std::erase_if(asked, [&reached](const amd_id& id) { return reached.count(id) == 0; });
    return asked;
}

} // namespace

PathTables::PathTables(const Answer& answer, const Ids& path)
{
    const Ids ends = ListEnds(answer, path);
    Ids subjects = ListAsked(answer, ends);
    const std::set<amd_id> asked(subjects.begin(), subjects.end());
    subjects.insert(subjects.end(), ends.begin(), ends.end());
    SubjectGroups same;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join != nullptr && id.classCode == IdClassShortcutJoin)
            same.AddJoin(join->left, join->right);
    }
    for (Ids& group : same.Split(subjects)) {
        mAskedCount += asked.count(group.front());
        for (const amd_id& subject : group)
            mIndexes.emplace(subject, mTables.size());
        mTables.push_back(std::move(group));
    }
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join != nullptr && id.classCode != IdClassShortcutJoin)
            mJoins.push_back({join, IndexOf(join->left), IndexOf(join->right)});
    }
}

namespace {

class JoinPlanner
{
public:
    JoinPlanner(const PathTables& tables, const JoinOptions& options)
        : mTables(tables),
          mOptions(options),
          mJoins(tables.GetJoins()),
          mIsIn(tables.GetCount(), false),
          mIsOptional(tables.GetCount(), false)
    {}

    [[nodiscard]] std::vector<JoinStep> Plan()
    {
        if (mTables.GetCount() == 0)
            return {};
        AddPart(ChooseStart());
        for (std::size_t table = 0; table < mTables.GetCount(); ++table) {
            if (!mIsIn[table])
                AddPart(table);
        }
        return std::move(mSteps);
    }

private:
    void AddPart(std::size_t start)
    {
        mIsIn[start] = true;
        mSteps.push_back({.table = start});
        while (AddNext()) {}
    }

    /// Adds the table that the next join of the path leads to; false when none leads further.
    bool AddNext()
    {
        for (const TableJoin& join : mJoins) {
            if (const auto from = FindInner(mIsIn, join)) {
                AddTable(join, *from);
                return true;
            }
        }
        return false;
    }

    void AddTable(const TableJoin& join, std::size_t from)
    {
        const std::size_t to = join.OtherEnd(from);
        const bool mayMiss = mIsOptional[from] ||
                             join.CardinalityAt(to).minimum == BMT_I_Association::CardinalityZero;
        mIsOptional[to] = mayMiss && mOptions.outerJoins == JoinOptions::EOuterJoins::ByCardinality;
        mIsIn[to] = true;
        mSteps.push_back(
            {.table = to, .from = from, .joins = TakeReady(), .isOuter = mIsOptional[to]});
    }

    /// Takes the joins both of whose tables are in: more than one may lead to the new table, or
    /// close a cycle with it.
    [[nodiscard]] std::vector<TableJoin> TakeReady()
    {
        std::vector<TableJoin> ready;
        std::vector<TableJoin> rest;
        for (const TableJoin& join : mJoins)
            (mIsIn[join.left] && mIsIn[join.right] ? ready : rest).push_back(join);
        mJoins = std::move(rest);
        return ready;
    }

    [[nodiscard]] std::size_t ChooseStart() const
    {
        if (mOptions.start && mTables.Has(*mOptions.start))
            return mTables.IndexOf(*mOptions.start);
        std::size_t best = 0;
        for (std::size_t table = 1; table < mTables.GetCount(); ++table) {
            if (CountManySteps(table) < CountManySteps(best))
                best = table;
        }
        return best;
    }

    [[nodiscard]] int CountManySteps(std::size_t start) const
    {
        std::vector<bool> isIn(mTables.GetCount(), false);
        isIn[start] = true;
        int count = 0;
        for (bool isGrowing = true; isGrowing;) {
            isGrowing = false;
            for (const TableJoin& join : mTables.GetJoins()) {
                if (const auto from = FindInner(isIn, join)) {
                    const std::size_t to = join.OtherEnd(*from);
                    isIn[to] = true;
                    isGrowing = true;
                    count += IsToMany(join.CardinalityAt(to)) ? 1 : 0;
                }
            }
        }
        // Starting apart from the joins would put them all behind a CROSS JOIN.
        return count + (std::count(isIn.begin(), isIn.end(), true) == 1 ? 1 : 0);
    }

    /// Returns the one table of the join that is in, when the other is not.
    [[nodiscard]] static std::optional<std::size_t> FindInner(const std::vector<bool>& isIn,
                                                              const TableJoin& join)
    {
        if (isIn[join.left] == isIn[join.right])
            return std::nullopt;
        return isIn[join.left] ? join.left : join.right;
    }

    const PathTables& mTables;
    const JoinOptions& mOptions;
    /// Those that no step has yet, in path order.
    std::vector<TableJoin> mJoins;
    std::vector<bool> mIsIn;
    std::vector<bool> mIsOptional;
    std::vector<JoinStep> mSteps;
};

} // namespace

std::vector<JoinStep> PlanJoins(const PathTables& tables, const JoinOptions& options)
{
    return JoinPlanner(tables, options).Plan();
}

} // namespace qe::tool
