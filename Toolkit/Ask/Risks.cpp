#include "Toolkit/Ask/Risks.h"

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/RowGraph.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <span>
#include <utility>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using Tables = std::set<std::size_t>;
using Entities = std::set<std::size_t>;

/// Finds which subjects come several times, and why.
class MultipliedRows
{
public:
    explicit MultipliedRows(const PathTables& path) : mPath(path), mGraph(path) {}

    /// Appends to the risks.
    void Find(Risks& risks);
    /// Returns the tables of the question that come several times as dimensions alone.
    [[nodiscard]] const Tables& GetDimensions() const { return mDimensions; }

private:
    void FindInPart(const Entities& part);
    void FindBridge(const Entities& part);
    void FindChasms(const Entities& part);
    void FindFans(const Entities& part);
    void FindManyToMany(const Entities& part);
    void FindCrossProduct(const std::vector<Entities>& parts);
    void FindDimensions();

    void Add(EMultiplied reason, const Tables& subjects, const Ids& by,
             const RowGraph::Joins& joins);
    [[nodiscard]] RowGraph::Joins FindRepeating(const Tables& tables) const;
    /// Returns the asked tables of the entities that come several times.
    [[nodiscard]] Tables ListAsked(const Entities& entities) const;
    [[nodiscard]] Entities FindTops(const Entities& entities) const;
    [[nodiscard]] bool HasAsked(const Entities& entities) const
    {
        return std::any_of(entities.begin(), entities.end(),
                           [this](std::size_t entity) { return mGraph.IsAsked(entity); });
    }
    [[nodiscard]] const amd_id& NameTable(std::size_t table) const
    {
        return mPath.GetSubjects(table).front();
    }
    [[nodiscard]] Ids NameEntities(const Entities& entities) const;

    const PathTables& mPath;
    RowGraph mGraph;
    std::vector<Multiplied> mFound;
    /// The tables of the question that some entry of `mFound` tells of.
    Tables mTold;
    Tables mDimensions;
};

void MultipliedRows::Find(Risks& risks)
{
    const std::vector<Entities> parts = mGraph.FindParts();
    for (const Entities& part : parts)
        FindInPart(part);
    if (parts.size() > 1)
        FindCrossProduct(parts);
    FindDimensions();
    for (const Entities& part : parts) {
        const Ids tops = NameEntities(FindTops(part));
        risks.rowsOf.insert(risks.rowsOf.end(), tops.begin(), tops.end());
    }
    risks.multiplied = std::move(mFound);
}

void MultipliedRows::FindInPart(const Entities& part)
{
    if (!HasAsked(FindTops(part)))
        return FindBridge(part);
    FindChasms(part);
    FindFans(part);
    FindManyToMany(part);
}

void MultipliedRows::FindBridge(const Entities& part)
{
    const Tables asked = ListAsked(part);
    Add(EMultiplied::Bridge, asked, NameEntities(FindTops(part)), FindRepeating(asked));
}

void MultipliedRows::FindChasms(const Entities& part)
{
    for (const std::size_t meeting : part) {
        const auto& steps = mGraph.GetUpSteps(meeting);
        if (steps.size() < 2)
            continue;
        Entities facts;
        Tables subjects;
        RowGraph::Joins joins;
        for (const RowGraph::UpStep& step : steps) {
            facts.merge(mGraph.FindTops(step.upper));
            subjects.merge(ListAsked(FindTops(mGraph.FindSide(step.upper, meeting))));
            joins.push_back(step.join);
        }
        Add(EMultiplied::Chasm, subjects, NameEntities(facts), joins);
        if (!subjects.empty())
            mFound.back().at = NameTable(mGraph.GetMembers(meeting).front());
    }
}

void MultipliedRows::FindFans(const Entities& part)
{
    for (const std::size_t entity : part) {
        Entities details;
        RowGraph::Joins joins;
        for (const RowGraph::UpStep& step : mGraph.GetUpSteps(entity)) {
            if (!step.join->join->leadsFromDetail)
                continue;
            details.insert(step.upper);
            joins.push_back(step.join);
        }
        if (!details.empty())
            Add(EMultiplied::Fan, ListAsked({entity}), NameEntities(details), joins);
    }
}

void MultipliedRows::FindManyToMany(const Entities& part)
{
    const Tables asked = ListAsked(FindTops(part));
    for (const TableJoin* const join : mGraph.FindManyToMany()) {
        if (part.count(mGraph.EntityOf(join->left)) != 0)
            Add(EMultiplied::ManyToMany, asked, {NameTable(join->left), NameTable(join->right)},
                {join});
    }
}

void MultipliedRows::FindCrossProduct(const std::vector<Entities>& parts)
{
    Tables asked;
    Ids firsts;
    for (const Entities& part : parts) {
        asked.merge(ListAsked(part));
        firsts.push_back(NameTable(mGraph.GetMembers(*part.begin()).front()));
    }
    Add(EMultiplied::CrossProduct, asked, firsts, {});
}

void MultipliedRows::FindDimensions()
{
    Entities all;
    for (std::size_t entity = 0; entity < mGraph.GetEntityCount(); ++entity)
        all.insert(entity);
    const Tables repeated = ListAsked(all);
    std::set_difference(repeated.begin(), repeated.end(), mTold.begin(), mTold.end(),
                        std::inserter(mDimensions, mDimensions.end()));
    Add(EMultiplied::Dimension, mDimensions, NameEntities(FindTops(all)),
        FindRepeating(mDimensions));
}

void MultipliedRows::Add(EMultiplied reason, const Tables& subjects, const Ids& by,
                         const RowGraph::Joins& joins)
{
    if (subjects.empty())
        return;
    Multiplied found{.reason = reason, .by = by};
    for (const std::size_t table : subjects)
        found.subjects.push_back(NameTable(table));
    for (const TableJoin* const join : joins)
        found.joins.push_back(join->join->id);
    mTold.insert(subjects.begin(), subjects.end());
    mFound.push_back(std::move(found));
}

RowGraph::Joins MultipliedRows::FindRepeating(const Tables& tables) const
{
    std::set<const TableJoin*> joins;
    for (const std::size_t table : tables) {
        const RowGraph::Joins repeating = mGraph.FindRepeating(table);
        joins.insert(repeating.begin(), repeating.end());
    }
    return {joins.begin(), joins.end()};
}

Tables MultipliedRows::ListAsked(const Entities& entities) const
{
    Tables asked;
    for (const std::size_t entity : entities) {
        for (const std::size_t table : mGraph.GetMembers(entity)) {
            if (mPath.IsAsked(table) && mGraph.IsRepeated(table))
                asked.insert(table);
        }
    }
    return asked;
}

Entities MultipliedRows::FindTops(const Entities& entities) const
{
    Entities tops;
    std::copy_if(entities.begin(), entities.end(), std::inserter(tops, tops.end()),
                 [this](std::size_t entity) { return mGraph.IsTop(entity); });
    return tops;
}

Ids MultipliedRows::NameEntities(const Entities& entities) const
{
    Ids names;
    for (const std::size_t entity : entities)
        names.push_back(NameTable(mGraph.GetMembers(entity).front()));
    return names;
}

/// Finds which subjects have rows that a statement leaves out, or keeps by outer joins alone.
class LostRows
{
public:
    LostRows(const PathTables& path, const std::vector<JoinStep>& steps)
        : mPath(path), mSteps(steps), mStepOf(path.GetCount())
    {
        for (std::size_t i = 0; i < steps.size(); ++i)
            mStepOf[steps[i].table] = i;
    }

    /// Appends to the risks.
    void Find(const Tables& dimensions, Risks& risks) const;

private:
    using Missing = std::vector<std::pair<std::size_t, const JoinStep*>>;

    struct Findings
    {
        Missing dropped{};
        Missing kept{};
    };

    [[nodiscard]] Findings FindMissing(std::size_t table) const;
    /// Returns the steps of the part that the table is in.
    [[nodiscard]] std::span<const JoinStep> GetPart(std::size_t table) const;
    /// Returns the steps that a statement took from where it began to the table.
    [[nodiscard]] std::set<const JoinStep*> FindRoute(std::size_t table) const;
    [[nodiscard]] const JoinStep& StepTo(std::size_t table) const { return mSteps[mStepOf[table]]; }
    /// Returns whether the table may have no row for a row at the other end of the step. Several
    /// conditions at once may leave none.
    [[nodiscard]] static bool MayMiss(const JoinStep& step, std::size_t table)
    {
        return step.joins.size() > 1 || step.joins.front().CardinalityAt(table).minimum ==
                                            BMT_I_Association::CardinalityZero;
    }
    [[nodiscard]] Lost Describe(std::size_t table, const Missing& missing) const;

    const PathTables& mPath;
    const std::vector<JoinStep>& mSteps;
    /// The position of the step to each table.
    std::vector<std::size_t> mStepOf;
};

void LostRows::Find(const Tables& dimensions, Risks& risks) const
{
    for (const JoinStep& step : mSteps) {
        if (step.isOuter && MayMiss(step, step.table))
            risks.outerJoined.push_back(mPath.GetSubjects(step.table).front());
    }
    for (std::size_t table = 0; table < mPath.GetCount() && mPath.IsAsked(table); ++table) {
        const Findings findings = FindMissing(table);
        const bool isDimension = dimensions.count(table) != 0;
        if (!findings.dropped.empty()) {
            risks.lost.push_back(Describe(table, findings.dropped));
            risks.lost.back().isDimension = isDimension;
        }
        if (!findings.kept.empty() && !isDimension) {
            risks.lost.push_back(Describe(table, findings.kept));
            risks.lost.back().isKept = true;
        }
    }
}

LostRows::Findings LostRows::FindMissing(std::size_t table) const
{
    const std::set<const JoinStep*> route = FindRoute(table);
    Findings findings;
    for (const JoinStep& step : GetPart(table)) {
        if (!step.from)
            continue;
        if (route.count(&step) != 0) {
            if (MayMiss(step, *step.from))
                findings.dropped.emplace_back(*step.from, &step);
        } else if (MayMiss(step, step.table)) {
            (step.isOuter ? findings.kept : findings.dropped).emplace_back(step.table, &step);
        }
    }
    return findings;
}

std::span<const JoinStep> LostRows::GetPart(std::size_t table) const
{
    const auto beginsPart = [](const JoinStep& step) { return !step.from; };
    const auto own = mSteps.begin() + (&StepTo(table) - mSteps.data());
    const auto begin = std::find_if(std::make_reverse_iterator(own + 1), mSteps.rend(), beginsPart);
    return {begin.base() - 1, std::find_if(own + 1, mSteps.end(), beginsPart)};
}

std::set<const JoinStep*> LostRows::FindRoute(std::size_t table) const
{
    std::set<const JoinStep*> route;
    const JoinStep* step = &StepTo(table);
    for (; step->from; step = &StepTo(*step->from))
        route.insert(step);
    return route;
}

Lost LostRows::Describe(std::size_t table, const Missing& missing) const
{
    Lost lost{.subject = mPath.GetSubjects(table).front()};
    // A list for each of many subjects would take the square of their number.
    constexpr std::size_t kMostMissing = 1000;
    for (const auto& [other, step] :
         std::span(missing).first(std::min(missing.size(), kMostMissing))) {
        lost.missing.push_back(mPath.GetSubjects(other).front());
        for (const TableJoin& join : step->joins)
            lost.joins.push_back(join.join->id);
    }
    return lost;
}

} // namespace

std::string_view ToText(EMultiplied reason)
{
    switch (reason) {
    case EMultiplied::Dimension:
        return "dimension";
    case EMultiplied::Fan:
        return "fan";
    case EMultiplied::Chasm:
        return "chasm";
    case EMultiplied::ManyToMany:
        return "many-to-many";
    case EMultiplied::Bridge:
        return "bridge";
    case EMultiplied::CrossProduct:
        return "cross product";
    }
    return "";
}

bool IsMultiplied(const Risks& risks)
{
    return std::any_of(
        risks.multiplied.begin(), risks.multiplied.end(),
        [](const Multiplied& entry) { return entry.reason != EMultiplied::Dimension; });
}

bool IsLost(const Risks& risks)
{
    return std::any_of(risks.lost.begin(), risks.lost.end(),
                       [](const Lost& entry) { return !entry.isKept && !entry.isDimension; });
}

std::vector<ERisk> ListRisks(const Answer& answer, const Risks& risks)
{
    std::vector<ERisk> list;
    if (IsMultiplied(risks))
        list.push_back(ERisk::Multiplied);
    if (IsLost(risks))
        list.push_back(ERisk::Lost);
    if (answer.ambiguity)
        list.push_back(ERisk::Ambiguous);
    return list;
}

Risks FindRisks(const Answer& answer, const std::vector<amd_id>& path, const JoinOptions& options)
{
    Risks risks;
    const PathTables tables(answer, path);
    const std::vector<JoinStep> steps = PlanJoins(tables, options);
    if (steps.empty())
        return risks;
    risks.outerJoins = options.outerJoins;
    risks.start = tables.GetSubjects(steps.front().table).front();
    MultipliedRows multiplied(tables);
    multiplied.Find(risks);
    LostRows(tables, steps).Find(multiplied.GetDimensions(), risks);
    return risks;
}

const std::vector<amd_id>& GetAnsweredPath(const Answer& answer)
{
    return answer.path.empty() && !answer.bestPaths.empty() ? answer.bestPaths.front()
                                                            : answer.path;
}

Risks FindRisks(const Question& question, const Answer& answer, const JoinOptions& options)
{
    if (question.operation == EOperation::JoinedSubjects || answer.error)
        return {};
    return FindRisks(answer, GetAnsweredPath(answer), options);
}

} // namespace qe::tool
