#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

namespace qe::tool {

RuleFindings FindUnreachedSubjects(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    // A subject alone in its model has nothing to be joined to.
    if (model.GetSubjects().size() < 2)
        return found;
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        if (!model.GetSteps(i).empty())
            continue;
        if (++found.total > limits.findings)
            continue;
        found.findings.push_back({{model.GetSubjects()[i]},
                                  model.NameOf(i),
                                  "No join leads to " + model.NameOf(i) +
                                      ", so no report can use it with another subject.",
                                  "Add a relationship to it, or leave it out of the model."});
    }
    return found;
}

} // namespace qe::tool
