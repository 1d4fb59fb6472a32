#ifndef TOOLKIT_AGENT_JOINENTRY_H
#define TOOLKIT_AGENT_JOINENTRY_H

#include "Toolkit/Ask/Answer.h"

#include <nlohmann/json.hpp>
#include <string>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Returns a join as all tools tell it, under names that arguments may hold.
[[nodiscard]] nlohmann::ordered_json JoinToJson(const model::Model& model, const AnswerJoin& join);

/// Returns its ends with their cardinalities and its name, on one line.
[[nodiscard]] std::string DescribeEnds(const model::Model& model, const AnswerJoin& join);

} // namespace qe::tool

#endif
