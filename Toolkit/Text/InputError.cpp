#include "Toolkit/Text/InputError.h"

#include <utility>

namespace qe::tool {

namespace {

std::string ToLine(const InputProblem& problem)
{
    std::string line = problem.place.empty() ? problem.text : problem.place + ": " + problem.text;
    const char* separator = " (did you mean ";
    for (const std::string& name : problem.nearestNames) {
        line += separator + name;
        separator = " or ";
    }
    return problem.nearestNames.empty() ? line : line + "?)";
}

} // namespace

InputError::InputError(std::vector<InputProblem> problems) : mProblems(std::move(problems))
{
    for (const InputProblem& problem : mProblems) {
        if (!mText.empty())
            mText += '\n';
        mText += ToLine(problem);
    }
}

} // namespace qe::tool
