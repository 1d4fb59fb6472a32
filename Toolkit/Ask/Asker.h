#ifndef TOOLKIT_ASK_ASKER_H
#define TOOLKIT_ASK_ASKER_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <cstddef>
#include <memory>

namespace qe::tool {

class DetailRule;
class QuestionResolver;
class RequestBasis;
struct ResolvedQuestion;
struct ToolModel;

/// Returns what the refiner answers to the question, in a request of its own. The candidate graph
/// is the whole model but for the question's restriction. What the library throws is part of the
/// answer.
///
/// Throws InputError, with all mistakes, when names in the question do not name one object each,
/// and std::invalid_argument for ESelector::Ask without a function. Any number of threads may ask
/// one model.
[[nodiscard]] Answer Ask(const ToolModel& model, const Question& question);

/// Asks many questions about one model. Each gets the answer that Ask gives it, but what questions
/// about the same candidate graph find out of the model is found out once. One thread at a time
/// uses an asker.
class Asker
{
public:
    /// Refers to the model.
    explicit Asker(const ToolModel& model);
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;
    ~Asker();

    /// See tool::Ask.
    [[nodiscard]] Answer Ask(const Question& question);

private:
    /// Takes the avoided joins out of the graph of a path, but for those that the best paths cannot
    /// do without: the refiner finds a path without a list of avoided joins.
    void LeaveOutAvoided(const Question& question, ResolvedQuestion& resolved) const;
    /// Returns the basis of the question before when it fits this one, otherwise a new one.
    [[nodiscard]] std::unique_ptr<RequestBasis> TakeBasis(const Question& question,
                                                          const ResolvedQuestion& resolved);

    const ToolModel& mModel;
    std::unique_ptr<QuestionResolver> mResolver;
    std::unique_ptr<DetailRule> mDetails;
    /// Null after a question that failed.
    std::unique_ptr<RequestBasis> mBasis;
    std::size_t mQuestionsOnBasis = 0;
};

} // namespace qe::tool

#endif
