#ifndef TOOLKIT_AGENT_PATHWARNINGS_H
#define TOOLKIT_AGENT_PATHWARNINGS_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Risks.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace qe::tool {

/// Something that whoever writes SQL along a path must heed, in words that say what to do.
struct PathWarning
{
    ERisk risk = ERisk::Multiplied;
    /// Whose columns it is about.
    std::vector<std::string> subjects{};
    /// What not to do, and why.
    std::string text{};
    /// What to do; ways out are arguments of a tool.
    std::string instead{};
};

/// Returns the warnings about the answer's path, rows that come several times first. None for
/// dimensions, whose rows repeat as one expects.
[[nodiscard]] std::vector<PathWarning> ListPathWarnings(const Answer& answer, const Risks& risks);

/// Returns their JSON form.
[[nodiscard]] nlohmann::ordered_json ToJson(const std::vector<PathWarning>& warnings);

/// Returns their lines, with a line break behind each. Names are made harmless.
[[nodiscard]] std::string ToText(const std::vector<PathWarning>& warnings);

} // namespace qe::tool

#endif
