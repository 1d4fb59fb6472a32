#include "Toolkit/Ask/PathMeasure.h"

#include <optional>
#include <set>
#include <string>

namespace qe::tool {

namespace {

/// Reads the joins of paths from an answer. A path whose fact tables cannot be counted goes without
/// their number.
class AnswerJoins : public PathJoinSource
{
public:
    explicit AnswerJoins(const Answer& answer) : mAnswer(answer) {}

    [[nodiscard]] std::optional<PathJoin> ReadPathJoin(const amd_id& id) const override
    {
        const AnswerJoin* const join = mAnswer.FindJoin(id);
        if (join == nullptr)
            return std::nullopt;
        return PathJoin{.ends = {join->left, join->right},
                        .leftCardinality = join->leftCardinality,
                        .rightCardinality = join->rightCardinality};
    }

    void ReportUncountable(EFactJoin /*problem*/) const override {}

private:
    const Answer& mAnswer;
};

std::set<std::string> GetJoinNames(const Answer& answer, const std::vector<amd_id>& path)
{
    const auto lookUpName = [&answer](const amd_id& id) {
        const AnswerJoin* const join = answer.FindJoin(id);
        return join == nullptr ? std::nullopt : std::optional(join->name);
    };
    return GetPathSignature<std::string>(path, lookUpName);
}

} // namespace

Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path)
{
    Alternative alternative;
    alternative.joins = path;
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = answer.FindJoin(id))
            alternative.weight += join->weight;
    }
    MeasureByAll(path, AnswerJoins(answer), alternative);
    return alternative;
}

std::string_view FindDecision(const Answer& answer, const RankingSwitches& switches)
{
    if (answer.alternatives.empty())
        return decision::kNone;
    if (answer.alternatives.size() == 1)
        return decision::kOnlyCandidate;
    const Alternative& best = answer.alternatives[0];
    const Alternative& next = answer.alternatives[1];
    if (const RankingCriterion* const criterion = FindDifference(best, next, switches))
        return criterion->name;
    return GetJoinNames(answer, best.joins) != GetJoinNames(answer, next.joins)
               ? decision::kJoinNames
               : decision::kOrder;
}

} // namespace qe::tool
