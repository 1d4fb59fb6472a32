#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

namespace qe::tool {

RuleFindings FindManyToManyJoins(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const ModelJoin& join : model.GetJoins()) {
        if (!IsMany(join.leftCardinality) || !IsMany(join.rightCardinality))
            continue;
        if (++found.total > limits.findings)
            continue;
        found.findings.push_back(
            {{join.id},
             model.NameOf(join.id),
             "The join " + model.NameOf(join.id) + " between " + model.NameOf(join.left) + " and " +
                 model.NameOf(join.right) +
                 " has many rows at both ends, so sums over either side come out too high.",
             "Put a bridge subject with one row for each pair between them, or set the right "
             "cardinality."});
    }
    return found;
}

} // namespace qe::tool
