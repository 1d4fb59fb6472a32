// Rules about the decisions of a model: whether they agree, and whether answers follow them.

#include "Toolkit/Check/Rules.h"

#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

std::string PlaceOf(const model::Model& model, const Ids& subjects)
{
    return subjects.empty() ? "everywhere" : JoinTexts(SubjectNames(model, subjects));
}

/// Returns whether a decision about exactly the subjects of both says something of the join.
bool IsSettled(const std::vector<Decision>& decisions, const Decision& a, const Decision& b,
               const amd_id& join)
{
    Ids both;
    std::set_union(a.subjects.begin(), a.subjects.end(), b.subjects.begin(), b.subjects.end(),
                   std::back_inserter(both));
    return std::any_of(decisions.begin(), decisions.end(), [&](const Decision& each) {
        return each.subjects == both &&
               (Contains(each.preferred, join) || Contains(each.avoided, join));
    });
}

Finding DescribeContradiction(const model::Model& model, const Decision& preferring,
                              const Decision& avoiding, const amd_id& join)
{
    Finding finding;
    finding.place = {join};
    finding.place.insert(finding.place.end(), preferring.subjects.begin(),
                         preferring.subjects.end());
    finding.place.insert(finding.place.end(), avoiding.subjects.begin(), avoiding.subjects.end());
    finding.placeText = JoinName(model, join);
    finding.text = "The decision for " + PlaceOf(model, preferring.subjects) + " prefers " +
                   finding.placeText + ", which the one for " + PlaceOf(model, avoiding.subjects) +
                   " avoids: a request for all of them follows the earlier one.";
    finding.advice = "Decide for all of these subjects at once, or delete one of the decisions.";
    return finding;
}

/// Returns whether the answer to its subjects goes by the decision.
bool IsFollowed(const ToolModel& model, const Decision& decision)
{
    Question question;
    for (const amd_id& subject : decision.subjects)
        question.subjects.push_back(SubjectName(*model.model, subject));
    const Answer answer = Ask(model, question);
    const auto isTaken = [&answer](const amd_id& join) { return Contains(answer.path, join); };
    return std::all_of(decision.preferred.begin(), decision.preferred.end(), isTaken) &&
           std::none_of(decision.avoided.begin(), decision.avoided.end(), isTaken);
}

} // namespace

RuleFindings FindContradictingDecisions(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const std::vector<Decision>& decisions = model.GetToolModel().decisions;
    for (const Decision& preferring : decisions) {
        for (const Decision& avoiding : decisions) {
            // Otherwise the one about more subjects goes first.
            if (preferring.subjects.size() != avoiding.subjects.size())
                continue;
            for (const amd_id& join : preferring.preferred) {
                if (Contains(avoiding.avoided, join) &&
                    !IsSettled(decisions, preferring, avoiding, join))
                    Record(found, limits, [&] {
                        return DescribeContradiction(model.GetModel(), preferring, avoiding, join);
                    });
            }
        }
    }
    return found;
}

RuleFindings FindUnfollowedDecisions(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const ToolModel& tool = model.GetToolModel();
    for (const Decision& decision : tool.decisions) {
        if (decision.subjects.size() < 2 || IsFollowed(tool, decision))
            continue;
        Record(found, limits, [&] {
            const std::string place = PlaceOf(*tool.model, decision.subjects);
            return Finding{.place = decision.subjects,
                           .placeText = place,
                           .text = "The answer to " + place +
                                   " does not go by the decision for them: the model has changed, "
                                   "or another decision goes against it.",
                           .advice = "Save the choice anew, or delete the decision."};
        });
    }
    return found;
}

} // namespace qe::tool
