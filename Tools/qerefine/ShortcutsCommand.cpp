#include "Tools/qerefine/Commands.h"

#include "Toolkit/Answers/ShortcutOutput.h"
#include "Toolkit/Ask/ShortcutReport.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/QuestionCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

namespace qe::tool {

namespace {

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
        const ShortcutReport report = FindShortcuts(model, GetOptions().MakeQuestion(GetContext()));
        if (GetOptions().AsksForJson())
            GetContext().output << ToJsonText(ToJson(report, *model.model)) << '\n';
        else
            WriteText(GetContext().output, report, *model.model);
    }
};

} // namespace

void AddShortcutsCommand(CLI::App& app, CommandContext& context)
{
    QuestionCommand::Attach(std::make_shared<ShortcutsCommand>(app, context));
}

} // namespace qe::tool
