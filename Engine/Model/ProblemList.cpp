#include "Engine/Model/ProblemList.h"

#include <algorithm>
#include <utility>

namespace qe::model {

void ProblemList::Add(std::size_t position, EAspect aspect, const std::string& text,
                      std::vector<std::string> nearestNames)
{
    const ObjectDraft& draft = (*mDrafts)[position];
    const ObjectRecord& record = draft.record;
    ModelProblem problem;
    problem.object = position;
    problem.tag = draft.tag;
    problem.id = record.id;
    problem.aspect = aspect;
    problem.text = std::string(ClassTitle(draft.classCode)) + ' ' +
                   (record.name.empty() ? ToText(record.id) : '"' + record.name + '"') + ' ' + text;
    problem.nearestNames = std::move(nearestNames);
    mProblems.push_back(std::move(problem));
}

void ProblemList::RaiseIfAny()
{
    if (mProblems.empty())
        return;
    std::stable_sort(mProblems.begin(), mProblems.end(),
                     [](const ModelProblem& left, const ModelProblem& right) {
                         return left.object < right.object;
                     });
    throw ModelError(std::move(mProblems));
}

} // namespace qe::model
