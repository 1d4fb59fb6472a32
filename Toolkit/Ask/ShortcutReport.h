#ifndef TOOLKIT_ASK_SHORTCUTREPORT_H
#define TOOLKIT_ASK_SHORTCUTREPORT_H

#include "amd_id.h"

#include <map>
#include <vector>

namespace qe::tool {

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
