#ifndef TOOLKIT_AGENT_PATHQUESTION_H
#define TOOLKIT_AGENT_PATHQUESTION_H

#include "Toolkit/Ask/Answer.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// One of several equally cheap paths, as a user can choose it.
struct PathOption
{
    /// The joins in which it differs from the others, in words.
    std::string label{};
    /// Whether it is the path that was answered.
    bool isAnswered = false;
    /// What to ask next where the user chooses it: what was asked, and the joins that make it the
    /// only cheapest path.
    nlohmann::json arguments{};
};

/// What only the user can answer: which of several equally cheap paths is meant.
struct PathQuestion
{
    /// One sentence for the user, with a question mark.
    std::string text{};
    /// Whether the choice that was made has no reason that a user would call one.
    bool mustAsk = false;
    /// What decided.
    std::string decidedBy{};
    std::vector<PathOption> options{};
    /// How many paths as cheap are known beside the options.
    std::size_t notShown = 0;
};

/// Returns the question that the answer leaves open; nothing when one path is the cheapest, or none
/// was found to tell from another. The arguments are those that the answer was asked with.
[[nodiscard]] std::optional<PathQuestion>
FindPathQuestion(const model::Model& model, const Answer& answer, const nlohmann::json& arguments);

/// Returns the arguments that ask for that candidate of the answer; nothing when nothing tells it
/// from others. Cheaper candidates than it can not be kept away by this.
[[nodiscard]] std::optional<nlohmann::json> MakeArguments(const model::Model& model,
                                                          const Answer& answer,
                                                          const nlohmann::json& arguments,
                                                          std::size_t alternative);

/// Returns the JSON form of the question; null for none.
[[nodiscard]] nlohmann::ordered_json ToJson(const std::optional<PathQuestion>& question);

/// Returns its lines, with a line break behind each. Names are made harmless.
[[nodiscard]] std::string ToText(const PathQuestion& question);

} // namespace qe::tool

#endif
