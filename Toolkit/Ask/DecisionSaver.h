#ifndef TOOLKIT_ASK_DECISIONSAVER_H
#define TOOLKIT_ASK_DECISIONSAVER_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Model/Decision.h"
#include "Toolkit/Model/ToolModel.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace qe::tool {

/// For which requests a decision is saved.
enum class EDecisionScope : std::uint8_t
{
    /// Those that name all the subjects of the question.
    Subjects,
    /// All.
    Everywhere,
};

/// A choice that is to be saved. Refers to all but the reason.
struct ChoiceToSave
{
    /// What was asked.
    const ToolModel& model;
    const Question& question;
    /// What was answered: the path that is to be the answer from now on.
    const Answer& answer;
    EDecisionScope scope = EDecisionScope::Subjects;
    std::string reason{};
};

/// Returns the decision with which the model answers the subjects of the question, asked without
/// any options, with the chosen path: it prefers the joins that other paths do without, and avoids
/// joins of the others where that is not enough. Returns nothing when the model needs no decision
/// for that. Throws InputError when no such decision is found, and when there is no path.
[[nodiscard]] std::optional<Decision> FindDecision(const ChoiceToSave& choice);

/// Returns the text of the model file with the decision in it, in place of one about the same
/// subjects. Everything else stays as it is. The model is what the file holds.
[[nodiscard]] std::string AddDecision(const std::string& text, const ToolModel& model,
                                      const Decision& decision);

} // namespace qe::tool

#endif
