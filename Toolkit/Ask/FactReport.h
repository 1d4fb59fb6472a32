#ifndef TOOLKIT_ASK_FACTREPORT_H
#define TOOLKIT_ASK_FACTREPORT_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// What the fact finder finds in some joins.
struct FactReport
{
    struct Fact
    {
        amd_id subject;
        /// Those that the fact is joined to itself.
        std::vector<amd_id> ownDimensions{};
        /// Also those behind them.
        std::vector<amd_id> allDimensions{};
    };

    struct Problem
    {
        amd_id join;
        std::string text{};
    };

    std::vector<Fact> facts{};
    std::vector<amd_id> sharedDimensions{};
    /// The joins that the fact finder refused, or that close a cycle.
    std::vector<Problem> problems{};
};

/// Returns the facts and dimensions of the joins.
[[nodiscard]] FactReport FindFacts(const std::vector<AnswerJoin>& joins);

/// Returns all joins of the model that can be read, in id order.
[[nodiscard]] std::vector<AnswerJoin> ReadJoins(const ToolModel& model);

} // namespace qe::tool

#endif
