#include "Toolkit/Ask/JoinPlan.h"

#include "IdClass.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Ask/JoinSweep.h"
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
          mSweep(tables.GetJoins(), tables.GetCount()),
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
        mSteps.push_back({.table = start});
        Enter(start);
        // The next is the first join of the path that leads further.
        while (!mLeading.empty()) {
            const TableJoin& join = mSweep.GetJoin(*mLeading.begin());
            AddTable(join, mIsIn[join.left] ? join.left : join.right);
        }
    }

    void Enter(std::size_t table)
    {
        mIsIn[table] = true;
        for (const std::size_t position : mSweep.GetTouching(table)) {
            if (mIsIn[mSweep.GetJoin(position).OtherEnd(table)]) {
                mLeading.erase(position);
                mReady.insert(position);
            } else {
                mLeading.insert(position);
            }
        }
    }

    void AddTable(const TableJoin& join, std::size_t from)
    {
        const std::size_t to = join.OtherEnd(from);
        const bool mayMiss = mIsOptional[from] ||
                             join.CardinalityAt(to).minimum == BMT_I_Association::CardinalityZero;
        mIsOptional[to] = mayMiss && mOptions.outerJoins == JoinOptions::EOuterJoins::ByCardinality;
        Enter(to);
        mSteps.push_back(
            {.table = to, .from = from, .joins = TakeReady(), .isOuter = mIsOptional[to]});
    }

    /// Takes the joins both of whose tables are in: more than one may lead to the new table, or
    /// close a cycle with it.
    [[nodiscard]] std::vector<TableJoin> TakeReady()
    {
        std::vector<TableJoin> ready;
        for (const std::size_t position : mReady)
            ready.push_back(mSweep.GetJoin(position));
        mReady.clear();
        return ready;
    }

    [[nodiscard]] std::size_t ChooseStart() const
    {
        if (mOptions.start && mTables.Has(*mOptions.start))
            return mTables.IndexOf(*mOptions.start);
        const std::vector<int> counts = CountManySteps();
        return static_cast<std::size_t>(std::min_element(counts.begin(), counts.end()) -
                                        counts.begin());
    }

    /// Returns for each table how many joins lead to a "many" side when it comes first.
    [[nodiscard]] std::vector<int> CountManySteps() const
    {
        std::vector<int> counts(mTables.GetCount(), 0);
        if (CountInForest(counts))
            return counts;
        for (std::size_t table = 0; table < counts.size(); ++table)
            counts[table] = CountManySteps(table);
        return counts;
    }

    [[nodiscard]] int CountManySteps(std::size_t start) const
    {
        int count = 0;
        std::size_t reached = 1;
        mSweep.Reach(start, [&](const TableJoin& join, std::size_t to) {
            ++reached;
            count += ManyAt(join, to);
        });
        // Starting apart from the joins would put them all behind a CROSS JOIN.
        return count + (reached == 1 ? 1 : 0);
    }

    /// Counts from the start of each part; from there to the next table only the join between them
    /// is gone the other way. Returns false when joins close a cycle.
    [[nodiscard]] bool CountInForest(std::vector<int>& counts) const
    {
        std::size_t reached = 0;
        std::vector<bool> isKnown(counts.size(), false);
        for (std::size_t start = 0; start < counts.size(); ++start) {
            if (isKnown[start])
                continue;
            isKnown[start] = true;
            counts[start] = CountManySteps(start);
            mSweep.Reach(start, [&](const TableJoin& join, std::size_t to) {
                const std::size_t from = join.OtherEnd(to);
                counts[to] = counts[from] - ManyAt(join, to) + ManyAt(join, from);
                isKnown[to] = true;
                ++reached;
            });
        }
        return reached == mTables.GetJoins().size();
    }

    [[nodiscard]] static int ManyAt(const TableJoin& join, std::size_t end)
    {
        return IsToMany(join.CardinalityAt(end)) ? 1 : 0;
    }

    const PathTables& mTables;
    const JoinOptions& mOptions;
    JoinSweep<TableJoin> mSweep;
    /// The joins that lead from what is in to what is not, by their places in the path.
    std::set<std::size_t> mLeading{};
    /// Those both of whose tables are in and that no step has yet.
    std::set<std::size_t> mReady{};
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
