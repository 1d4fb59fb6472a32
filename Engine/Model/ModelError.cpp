#include "Engine/Model/ModelError.h"

#include <utility>

namespace qe::model {

ModelError::ModelError(std::vector<ModelProblem> problems) : mProblems(std::move(problems))
{
    for (const ModelProblem& problem : mProblems) {
        if (!mText.empty())
            mText += '\n';
        mText += problem.text;
        for (std::size_t i = 0; i < problem.nearestNames.size(); ++i)
            mText += (i == 0 ? "; nearest: " : ", ") + problem.nearestNames[i];
    }
}

} // namespace qe::model
