#ifndef TOOLKIT_ASK_RESOLVEDQUESTION_H
#define TOOLKIT_ASK_RESOLVEDQUESTION_H

#include "Toolkit/Model/Decision.h"
#include "amd_id.h"

#include <optional>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

struct Question;

/// The names of a question as ids, and the candidate graph.
struct ResolvedQuestion
{
    std::vector<amd_id> subjects{};
    std::vector<amd_id> secondSet{};
    std::vector<amd_id> favouredJoins{};
    std::vector<amd_id> requiredJoins{};
    std::vector<amd_id> avoidedJoins{};
    std::vector<amd_id> favouredSubjects{};
    std::vector<amd_id> nodes{};
    std::vector<amd_id> joins{};
    /// The decisions of the model that hold for the question, with the joins that they add.
    std::vector<Decision> decisions{};
};

/// Looks up what questions about one model name.
class QuestionResolver
{
public:
    /// Refers to the model.
    explicit QuestionResolver(const model::Model& model) : mModel(model) {}

    /// Returns the objects that the question names, with its restriction applied. Subjects that are
    /// to be connected and ends of required joins are never left out for not being among the only
    /// ones. Throws InputError with all mistakes, also for lists that the operation has no use for.
    [[nodiscard]] ResolvedQuestion Resolve(const Question& question);

private:
    struct Candidates
    {
        std::vector<amd_id> nodes{};
        std::vector<amd_id> joins{};
    };

    /// Returns what questions without a restriction choose from.
    [[nodiscard]] const Candidates& GetAll();

    const model::Model& mModel;
    std::optional<Candidates> mAll;
};

} // namespace qe::tool

#endif
