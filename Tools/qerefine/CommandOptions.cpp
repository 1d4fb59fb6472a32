#include "Tools/qerefine/CommandOptions.h"

#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Tools/qerefine/Command.h"

#include <cstddef>
#include <ostream>

namespace qe::tool {

namespace {

/// Returns what is wrong with the text of a setting; empty when nothing is.
std::string FindSettingFault(const std::string& text)
{
    try {
        static_cast<void>(ParseSetting(text));
        return {};
    } catch (const InputError& error) {
        return error.what();
    }
}

} // namespace

CLI::Option* AddLimit(CLI::App& command, const std::string& option, ListLimit& limit,
                      const std::string& description)
{
    return command.add_option_function<std::size_t>(
        option, [&limit](std::size_t number) { limit = ListLimit::FromOption(number); },
        description + "; 0: all");
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
    return command.add_option("MODEL", path, description)->type_name("")->required();
}

void AddModelSettings(CLI::App& command, ModelOptions& options, const std::string& group)
{
    AddChoice(command, "--roles", options.open.roles,
              {{"plain", ERoles::Plain}, {"shortcuts", ERoles::Shortcuts}},
              "For databases and DDL: make shortcuts for tables that another one refers to several "
              "times")
        ->group(group);
    command
        .add_option_function<std::vector<std::string>>(
            "--set",
            [&options](const std::vector<std::string>& texts) {
                for (const std::string& text : texts)
                    options.settings.push_back(ParseSetting(text));
            },
            "User setting, such as \"General Options/NewAlgo=0\"")
        ->type_name("SECTION/KEY=NUMBER")
        ->allow_extra_args(false)
        ->check(CLI::Validator(FindSettingFault, ""))
        ->group(group);
}

ToolModel OpenModelWithNotes(const ModelOptions& options, const CommandContext& context)
{
    ToolModel model = NameWork("reading " + options.path.string(),
                               [&options] { return OpenModel(options.path, options.open); });
    WriteNotes(model, context);
    return model;
}

void WriteNotes(const ToolModel& model, const CommandContext& context)
{
    for (const std::string& note : model.notes)
        context.error << "note: " << ToDisplayText(note) << '\n';
}

} // namespace qe::tool
