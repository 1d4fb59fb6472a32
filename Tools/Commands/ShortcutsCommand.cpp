#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Tools/Ask/Request.h"
#include "Tools/Ask/SubjectName.h"
#include "Tools/Commands/Diagnostics.h"
#include "Tools/Commands/QuestionOptions.h"
#include "Tools/Commands/ReportCommands.h"
#include "Tools/InputError.h"
#include "Tools/Output/DisplayText.h"
#include "Tools/Output/JsonAnswer.h"

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

class ShortcutsCommand
{
public:
    ShortcutsCommand(CLI::App& command, CommandContext& context)
        : mContext(context), mOptions(EOperation::JoinedSubjects)
    {
        mOptions.AddModel(command);
        mOptions.AddLists(command, QuestionOptions::ELists::Graph);
        mOptions.AddGovernors(command);
        command.add_option("--format", mFormat, "The form of the answer")
            ->type_name("text|json")
            ->check(CLI::IsMember(std::vector<std::string>{"text", "json"}).description(""))
            ->group("Output");
    }

    void Run()
    {
        const ToolModel model = mOptions.OpenModel(mContext);
        try {
            const ShortcutReport report = MakeReport(model, mOptions.MakeQuestion(mContext));
            if (mFormat == "json")
                WriteJson(*model.model, report);
            else
                WriteText(*model.model, report);
        } catch (const InputError& error) {
            WriteProblems(mContext.error, error);
            mContext.exitCode = EExitCode::WrongUsage;
        }
    }

private:
    static std::string Show(const model::Model& model, const amd_id& subject)
    {
        return ToDisplayText(SubjectName(model, subject));
    }

    void WriteText(const model::Model& model, const ShortcutReport& report)
    {
        std::ostream& out = mContext.output;
        out << report.groups.size() << (report.groups.size() == 1 ? " group\n" : " groups\n");
        for (const auto& group : report.groups) {
            out << "  " << Show(model, group.first) << ':';
            const char* separator = " ";
            for (const amd_id& member : group.second) {
                out << separator << Show(model, member);
                separator = ", ";
            }
            out << '\n';
        }
        for (const amd_id& shortcut : report.ungrouped)
            out << "In no group: " << Show(model, shortcut) << " (stands for "
                << Show(model, model.GetTarget(shortcut)) << ")\n";
        if (!report.joins.empty())
            out << "Shortcut joins\n";
        for (const AQE_I_Refiner::QEjoinInfo& join : report.joins)
            out << "  " << ToText(join.joinId) << "  " << Show(model, join.leftQuerySubject)
                << " 1..1 -- 1..1 " << Show(model, join.rightQuerySubject) << '\n';
    }

    void WriteJson(const model::Model& model, const ShortcutReport& report)
    {
        const auto names = [&model](const std::vector<amd_id>& subjects) {
            Json list = Json::array();
            for (const amd_id& subject : subjects)
                list.push_back(SubjectName(model, subject));
            return list;
        };
        Json groups = Json::array();
        for (const auto& group : report.groups)
            groups.push_back(
                {{"key", SubjectName(model, group.first)}, {"members", names(group.second)}});
        Json joins = Json::array();
        for (const AQE_I_Refiner::QEjoinInfo& join : report.joins)
            joins.push_back({{"id", ToText(join.joinId)},
                             {"left", SubjectName(model, join.leftQuerySubject)},
                             {"right", SubjectName(model, join.rightQuerySubject)}});
        const Json value{{"version", JsonAnswerVersion},
                         {"groups", groups},
                         {"ungrouped", names(report.ungrouped)},
                         {"joins", joins}};
        mContext.output << ToText(value, 2) << '\n';
    }

    CommandContext& mContext;
    QuestionOptions mOptions;
    std::string mFormat = "text";
};

} // namespace

void AddShortcutsCommand(CLI::App& app, CommandContext& context)
{
    CLI::App* const command = app.add_subcommand(
        "shortcuts", "Tells which shortcuts count as one, and the joins between them.");
    command->footer("Example:\n  qerefine shortcuts shop.json --grouping container");
    const auto shortcuts = std::make_shared<ShortcutsCommand>(*command, context);
    command->callback([shortcuts] { shortcuts->Run(); });
}

} // namespace qe::tool
