#ifndef ENGINE_MODEL_PROBLEMLIST_H
#define ENGINE_MODEL_PROBLEMLIST_H

#include "Engine/Model/ModelError.h"
#include "Engine/Model/ObjectDraft.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace qe::model {

/// Gathers the problems of drafts while they are checked.
class ProblemList
{
public:
    explicit ProblemList(const std::deque<ObjectDraft>& drafts) : mDrafts(&drafts) {}

    /// Adds a problem of the draft at that position. `text` goes on after the object's title and
    /// name, such as "has no name".
    void Add(std::size_t position, EAspect aspect, const std::string& text,
             std::vector<std::string> nearestNames = {});

    /// Throws a ModelError when there are problems.
    void RaiseIfAny();

private:
    const std::deque<ObjectDraft>* mDrafts;
    std::vector<ModelProblem> mProblems;
};

} // namespace qe::model

#endif
