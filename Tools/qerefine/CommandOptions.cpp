#include "Tools/qerefine/CommandOptions.h"

#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Tools/qerefine/Command.h"

#include <chrono>
#include <cstddef>
#include <ostream>
#include <utility>

namespace qe::tool {

namespace {

/// Returns what is wrong with the text of a number that counts something.
std::string FindCountFault(const std::string& text)
{
    return text.starts_with('-') ? "must be 0 or more: " + text : std::string();
}

/// Lets "-" stand for the standard input.
std::string NameStandardInput(std::string& path)
{
    if (path == "-")
        path = "/dev/stdin";
    return {};
}

} // namespace

void AcceptStandardInput(CLI::Option& option)
{
    option.transform(CLI::Validator(NameStandardInput, ""));
}

void RejectNegative(CLI::Option& option)
{
    option.check(CLI::Validator(FindCountFault, ""));
}

CLI::Option* AddLimit(CLI::App& command, const std::string& option, ListLimit& limit,
                      const std::string& description)
{
    CLI::Option* const added = command.add_option_function<std::size_t>(
        option, [&limit](std::size_t number) { limit = ListLimit::FromOption(number); },
        description + "; 0: all");
    RejectNegative(*added);
    return added;
}

CLI::Option* AddRepeated(CLI::App& command, const std::string& option,
                         std::vector<std::string>& values, const std::string& description)
{
    return command.add_option(option, values, description)->allow_extra_args(false);
}

CLI::Option* AddReportFormat(CLI::App& command, EReportFormat& format,
                             const std::string& description)
{
    return AddChoice(command, "--format", format,
                     {{"text", EReportFormat::PlainText}, {"json", EReportFormat::JsonText}},
                     description);
}

CLI::Option* AddModelPath(CLI::App& command, std::filesystem::path& path,
                          const std::string& description)
{
    CLI::Option* const option =
        command.add_option("MODEL", path, description + "; \"-\" is standard input")
            ->type_name("")
            ->required();
    AcceptStandardInput(*option);
    return option;
}

CLI::Option* AddRoles(CLI::App& command, ERoles& roles)
{
    return AddChoice(
        command, "--roles", roles, {{"plain", ERoles::Plain}, {"shortcuts", ERoles::Shortcuts}},
        "For databases and DDL: let several keys to one table lead to a shortcut each; without a "
        "value: shortcuts");
}

void AddServerOptions(CLI::App& command, ServerOptions& options, const std::string& group)
{
    AddRepeated(command, "--schema", options.patterns.schemas,
                "For URLs: only tables of such schemas; * and ? stand for letters")
        ->type_name("PATTERN")
        ->group(group);
    AddRepeated(command, "--tables", options.patterns.tables,
                "For URLs: only such tables; * and ? stand for letters")
        ->type_name("PATTERN")
        ->group(group);
    constexpr int kLongest = 86400;
    command
        .add_option_function<int>(
            "--statement-timeout",
            [&options](int seconds) { options.limits.statement = std::chrono::seconds(seconds); },
            "For URLs: how long the server may take for a statement (60; 0: as long as it takes)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0, kLongest).description(""))
        ->group(group);
}

void AddModelSettings(CLI::App& command, ModelOptions& options, const std::string& group)
{
    AddRoles(command, options.open.roles)->group(group);
    command
        .add_option_function<std::vector<std::string>>(
            "--set",
            [&options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts)
                    options.settings.push_back(
                        BlameArguments([&text] { return ParseSetting(text); }));
            },
            "User setting, such as \"General Options/NewAlgo=0\"")
        ->type_name("SECTION/KEY=NUMBER")
        ->allow_extra_args(false)
        ->group(group);
    AddServerOptions(command, options.open.server, group);
}

ToolModel OpenModelWithNotes(const ModelOptions& options, const CommandContext& context)
{
    ToolModel model = NameWork("reading " + ToShownPath(options.path),
                               [&options] { return OpenModel(options.path, options.open); });
    WriteNotes(model, context);
    const std::shared_ptr<JoinHistory> history = OpenHistory(model, options, context);
    return history == nullptr ? model : WithHistory(std::move(model), history);
}

void AddHistory(CLI::App& command, std::vector<std::filesystem::path>& histories,
                const std::string& group)
{
    command
        .add_option("--history", histories,
                    "Past queries: lines of JSON as for evaluate, or SQL statements")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->group(group);
}

std::shared_ptr<JoinHistory> OpenHistory(const ToolModel& model, const ModelOptions& options,
                                         const CommandContext& context,
                                         const std::optional<std::string>& database)
{
    const LoadedHistory loaded = LoadHistoryOf(model, options.path, options.histories, database);
    WriteNotes(loaded.notes, context);
    return loaded.history;
}

void WriteNotes(const std::vector<std::string>& notes, const CommandContext& context)
{
    for (const std::string& note : notes)
        context.error << "note: " << ToDisplayText(note) << '\n';
}

void WriteNotes(const ToolModel& model, const CommandContext& context)
{
    WriteNotes(model.notes, context);
}

} // namespace qe::tool
