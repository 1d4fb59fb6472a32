#ifndef TOOLKIT_AGENT_TOOLLIST_H
#define TOOLKIT_AGENT_TOOLLIST_H

#include "Toolkit/Agent/Revision.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns what clients of the revision are told of the tools, always in the same order: names,
/// descriptions and the schemas of arguments and results.
[[nodiscard]] nlohmann::ordered_json ListTools(const Revision& revision);

/// Returns the names of the tools, in that order.
[[nodiscard]] std::vector<std::string> ListToolNames();

/// Returns the names of the arguments that the tool takes; none for a tool that is not there.
[[nodiscard]] std::vector<std::string> ListToolArguments(std::string_view tool);

/// Returns the names of the arguments in a group that several tools take, such as "path".
[[nodiscard]] std::vector<std::string> ListArgumentGroup(std::string_view group);

} // namespace qe::tool

#endif
