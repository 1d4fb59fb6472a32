#ifndef TOOLKIT_ASK_REPORTS_H
#define TOOLKIT_ASK_REPORTS_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <map>
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

/// Returns the facts and dimensions of the answer's path, or of the first of its best paths.
[[nodiscard]] FactReport FindPathFacts(const Answer& answer);

/// Returns all joins of the model that can be read, in id order.
[[nodiscard]] std::vector<AnswerJoin> ReadJoins(const ToolModel& model);

struct Question;
struct ToolModel;

/// Which shortcuts of a candidate graph count as one.
struct ShortcutReport
{
    /// A join of weight 0 between a shortcut and what it stands for, or between two shortcuts.
    struct Join
    {
        amd_id id;
        amd_id left;
        amd_id right;
    };

    /// The shortcuts of each group by the group's key.
    std::map<amd_id, std::vector<amd_id>> groups{};
    std::vector<amd_id> ungrouped{};
    std::vector<Join> joins{};
};

/// Returns what the shortcut information of the question's candidate graph holds. Throws
/// InputError, with all mistakes, when names in the question do not name one object each.
[[nodiscard]] ShortcutReport FindShortcuts(const ToolModel& model, const Question& question);

} // namespace qe::tool

#endif
