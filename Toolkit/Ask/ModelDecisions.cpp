#include "Toolkit/Ask/ModelDecisions.h"

#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/ResolvedQuestion.h"

#include <algorithm>
#include <set>
#include <utility>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

} // namespace

std::vector<const Decision*> FindHoldingDecisions(const std::vector<Decision>& decisions,
                                                  const std::vector<amd_id>& asked)
{
    std::vector<const Decision*> holding;
    for (const Decision& decision : decisions) {
        if (std::includes(asked.begin(), asked.end(), decision.subjects.begin(),
                          decision.subjects.end()))
            holding.push_back(&decision);
    }
    std::stable_sort(holding.begin(), holding.end(), [](const Decision* a, const Decision* b) {
        return a->subjects.size() > b->subjects.size();
    });
    return holding;
}

namespace {

/// Hands out the joins of the candidate graph, each once.
class FreeJoins
{
public:
    explicit FreeJoins(const ResolvedQuestion& resolved)
        : mFree(resolved.joins.begin(), resolved.joins.end())
    {
        for (const Ids* const said :
             {&resolved.favouredJoins, &resolved.requiredJoins, &resolved.avoidedJoins}) {
            for (const amd_id& join : *said)
                mFree.erase(join);
        }
    }

    /// Returns those of the joins that are free, which they are no longer.
    Ids Take(const Ids& joins)
    {
        Ids taken;
        for (const amd_id& join : joins) {
            if (mFree.erase(join) > 0)
                taken.push_back(join);
        }
        return taken;
    }

private:
    std::set<amd_id> mFree;
};

} // namespace

void ApplyDecisions(const std::vector<Decision>& decisions, const Question& question,
                    ResolvedQuestion& resolved)
{
    if (decisions.empty() || question.operation == EOperation::JoinedSubjects)
        return;
    Ids asked = resolved.subjects;
    asked.insert(asked.end(), resolved.secondSet.begin(), resolved.secondSet.end());
    std::sort(asked.begin(), asked.end());
    const bool takesPreferred = resolved.favouredJoins.empty() && resolved.requiredJoins.empty();
    FreeJoins free(resolved);
    for (const Decision* const decision : FindHoldingDecisions(decisions, asked)) {
        Decision applied{.subjects = decision->subjects,
                         .preferred = free.Take(takesPreferred ? decision->preferred : Ids()),
                         .avoided = free.Take(decision->avoided),
                         .reason = decision->reason};
        if (!applied.preferred.empty() || !applied.avoided.empty())
            resolved.decisions.push_back(std::move(applied));
    }
    for (const Decision& applied : resolved.decisions) {
        resolved.favouredJoins.insert(resolved.favouredJoins.end(), applied.preferred.begin(),
                                      applied.preferred.end());
        resolved.avoidedJoins.insert(resolved.avoidedJoins.end(), applied.avoided.begin(),
                                     applied.avoided.end());
    }
}

AnswerDecision ToAnswerDecision(const model::Model& model, const Decision& decision)
{
    const auto toNames = [&model](const Ids& joins) {
        std::vector<std::string> names;
        for (const amd_id& join : joins)
            names.push_back(JoinName(model, join));
        return names;
    };
    return {.subjects = SubjectNames(model, decision.subjects),
            .preferred = toNames(decision.preferred),
            .avoided = toNames(decision.avoided),
            .reason = decision.reason};
}

} // namespace qe::tool
