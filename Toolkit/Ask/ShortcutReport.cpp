#include "Toolkit/Ask/ShortcutReport.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "IdClass.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/Request.h"
#include "Toolkit/Ask/ResolvedQuestion.h"
#include "Toolkit/Model/ToolModel.h"

namespace qe::tool {

ShortcutReport FindShortcuts(const ToolModel& model, const Question& question)
{
    const ResolvedQuestion resolved = ResolveQuestion(*model.model, question);
    Request request(model, question, resolved);
    AQE_I_QuerySubjectShortcutInfo& shortcuts = request.GetShortcutInfo();
    ShortcutReport report;
    for (const amd_id& node : resolved.nodes) {
        if (node.classCode != IdClassShortcut)
            continue;
        const amd_id key = shortcuts.GetGroupKey(node);
        if (key == node)
            report.ungrouped.push_back(node);
        else
            report.groups[key].push_back(node);
    }
    // A shortcut that is the key of others is in their group.
    std::erase_if(report.ungrouped,
                  [&report](const amd_id& shortcut) { return report.groups.count(shortcut) != 0; });
    for (const AQE_I_Refiner::QEjoinInfo& join : shortcuts.GetShortcutJoins())
        report.joins.push_back({join.joinId, join.leftQuerySubject, join.rightQuerySubject});
    return report;
}

} // namespace qe::tool
