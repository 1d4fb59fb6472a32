#include "Toolkit/Ask/PathMeasure.h"

#include "AQE_I_FactFinder.h"
#include "HBNException.h"

#include <set>

namespace qe::tool {

namespace {

constexpr int kOne = BMT_I_Association::CardinalityOne;
constexpr int kMany = BMT_I_Association::CardinalityMany;

bool IsManyToMany(const AnswerJoin& join)
{
    return join.leftCardinality.maximum == kMany && join.rightCardinality.maximum == kMany;
}

std::optional<int> CountFacts(const std::vector<const AnswerJoin*>& joins)
{
    const AUT_RefPtr<AQE_I_FactFinder> finder = AQE_I_FactFinder::Create();
    try {
        for (const AnswerJoin* const join : joins) {
            const bool manyToMany = IsManyToMany(*join);
            finder->AddJoin(join->id, join->left, manyToMany ? kOne : join->leftCardinality.maximum,
                            join->right, manyToMany ? kOne : join->rightCardinality.maximum);
        }
    } catch (const HBNException&) {
        // Unknown cardinalities or a cycle: nothing can be said.
        return std::nullopt;
    }
    std::vector<amd_id> facts;
    finder->GetFacts(facts);
    return static_cast<int>(facts.size());
}

int CountBranches(const std::vector<const AnswerJoin*>& joins)
{
    std::map<amd_id, int> counts;
    for (const AnswerJoin* const join : joins) {
        ++counts[join->left];
        ++counts[join->right];
    }
    int branches = 0;
    for (const auto& count : counts)
        branches += count.second > 2 ? count.second - 2 : 0;
    return branches;
}

std::set<std::string> NamesOf(const Answer& answer, const std::vector<amd_id>& path)
{
    std::set<std::string> names;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        names.insert(join == nullptr ? "Dummy" : join->name);
    }
    return names;
}

} // namespace

Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path)
{
    Alternative alternative;
    alternative.joins = path;
    std::vector<const AnswerJoin*> joins;
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = answer.FindJoin(id)) {
            joins.push_back(join);
            alternative.weight += join->weight;
            alternative.manyToManyJoins += IsManyToMany(*join) ? 1 : 0;
        }
    }
    alternative.factTables = CountFacts(joins);
    alternative.branches = CountBranches(joins);
    return alternative;
}

ECriterion FindCriterion(const Answer& answer, const RankingChoice& ranking)
{
    if (answer.alternatives.empty())
        return ECriterion::None;
    if (answer.alternatives.size() == 1)
        return ECriterion::OnlyCandidate;
    const Alternative& best = answer.alternatives[0];
    const Alternative& next = answer.alternatives[1];
    if (best.weight != next.weight)
        return ECriterion::Weight;
    if (ranking.useFactTableCount &&
        (best.factTables != next.factTables || best.manyToManyJoins != next.manyToManyJoins))
        return ECriterion::FactTables;
    if (ranking.useStraightestPath && best.branches != next.branches)
        return ECriterion::Straightness;
    return NamesOf(answer, best.joins) != NamesOf(answer, next.joins) ? ECriterion::JoinNames
                                                                      : ECriterion::Order;
}

} // namespace qe::tool
