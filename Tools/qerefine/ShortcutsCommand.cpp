#include "Tools/qerefine/Commands.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/Request.h"
#include "Toolkit/Ask/SubjectName.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/QuestionCommand.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <ostream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// What the shortcut information tells about a candidate graph.
struct ShortcutReport
{
    /// The shortcuts of each group by the group's key.
    std::map<amd_id, std::vector<amd_id>> groups{};
    std::vector<amd_id> ungrouped{};
    std::vector<AQE_I_Refiner::QEjoinInfo> joins{};
};

ShortcutReport MakeReport(const ToolModel& model, const Question& question)
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
    for (auto shortcut = report.ungrouped.begin(); shortcut != report.ungrouped.end();)
        shortcut = report.groups.count(*shortcut) != 0 ? report.ungrouped.erase(shortcut)
                                                       : std::next(shortcut);
    report.joins = shortcuts.GetShortcutJoins();
    return report;
}

class ShortcutsCommand final : public QuestionCommand
{
public:
    ShortcutsCommand(CLI::App& app, CommandContext& context)
        : QuestionCommand(app, context, EOperation::JoinedSubjects,
                          {"shortcuts",
                           "Tells which shortcuts count as one, and the joins between them.",
                           "qerefine shortcuts shop.json --grouping container"})
    {
        GetOptions().AddLists(QuestionOptions::ELists::Graph);
        GetOptions().AddGovernors();
        GetOptions().AddReportFormat();
    }

private:
    void Respond(const ToolModel& model) override
    {
        const ShortcutReport report = MakeReport(model, GetOptions().MakeQuestion(GetContext()));
        if (GetOptions().AsksForJson())
            GetContext().output << ToJsonText(ToJson(*model.model, report)) << '\n';
        else
            WriteText(GetContext().output, *model.model, report);
    }

    static std::string Show(const model::Model& model, const amd_id& subject)
    {
        return ToDisplayText(SubjectName(model, subject));
    }

    static void WriteText(std::ostream& out, const model::Model& model,
                          const ShortcutReport& report)
    {
        out << report.groups.size() << (report.groups.size() == 1 ? " group\n" : " groups\n");
        for (const auto& [key, members] : report.groups)
            out << "  " << Show(model, key) << ": " << ToDisplayList(SubjectNames(model, members))
                << '\n';
        for (const amd_id& shortcut : report.ungrouped)
            out << "In no group: " << Show(model, shortcut) << " (stands for "
                << Show(model, model.GetTarget(shortcut)) << ")\n";
        if (!report.joins.empty())
            out << "Shortcut joins\n";
        for (const AQE_I_Refiner::QEjoinInfo& join : report.joins)
            out << "  " << ToText(join.joinId) << "  " << Show(model, join.leftQuerySubject)
                << " 1..1 -- 1..1 " << Show(model, join.rightQuerySubject) << '\n';
    }

    static Json ToJson(const model::Model& model, const ShortcutReport& report)
    {
        Json groups = Json::array();
        for (const auto& [key, members] : report.groups)
            groups.push_back(
                {{"key", SubjectName(model, key)}, {"members", SubjectNames(model, members)}});
        Json joins = Json::array();
        for (const AQE_I_Refiner::QEjoinInfo& join : report.joins)
            joins.push_back({{"id", ToText(join.joinId)},
                             {"left", SubjectName(model, join.leftQuerySubject)},
                             {"right", SubjectName(model, join.rightQuerySubject)}});
        return {{"version", kAnswerVersion},
                {"groups", groups},
                {"ungrouped", SubjectNames(model, report.ungrouped)},
                {"joins", joins}};
    }
};

} // namespace

void AddShortcutsCommand(CLI::App& app, CommandContext& context)
{
    QuestionCommand::Attach(std::make_shared<ShortcutsCommand>(app, context));
}

} // namespace qe::tool
