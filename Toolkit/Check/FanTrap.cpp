#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

#include <algorithm>
#include <set>

namespace qe::tool {

namespace {

constexpr std::size_t kShownNames = 5;
/// With fewer dimensions of its own a subject is taken for a dimension in a snowflake.
constexpr std::size_t kDimensionsOfFact = 2;

} // namespace

RuleFindings FindFanTraps(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        std::set<std::size_t> dimensions;
        std::set<std::size_t> details;
        for (const ModelGraph::Step& step : model.GetSteps(i)) {
            const ModelJoin& join = model.GetJoins()[step.join];
            const bool isMany =
                IsMany(join.left == i ? join.leftCardinality : join.rightCardinality);
            const bool toMany =
                IsMany(join.left == i ? join.rightCardinality : join.leftCardinality);
            if (isMany && !toMany)
                dimensions.insert(step.subject);
            if (toMany && !isMany)
                details.insert(step.subject);
        }
        if (dimensions.size() < kDimensionsOfFact || details.empty())
            continue;
        if (++found.total > limits.findings)
            continue;
        const std::string name = model.NameOf(i);
        found.findings.push_back(
            {{model.GetSubjects()[i]},
             name,
             name + " has " + std::to_string(dimensions.size()) +
                 " dimensions of its own, and a join repeats its rows for each row of " +
                 ListNames(model, {details.begin(), details.end()}, kShownNames) + ".",
             "Where " + name +
                 " has measures, sum them before joining the details, or move them there."});
    }
    return found;
}

} // namespace qe::tool
