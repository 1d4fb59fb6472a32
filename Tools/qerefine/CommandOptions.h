#ifndef TOOLS_QEREFINE_COMMANDOPTIONS_H
#define TOOLS_QEREFINE_COMMANDOPTIONS_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

class JoinHistory;
struct CommandContext;

/// The values of an option, by what the user writes.
template <typename T>
using Choices = std::vector<std::pair<std::string, T>>;

/// Returns the choices as help shows them, such as "plain|shortcuts".
template <typename T>
std::string ToTypeName(const Choices<T>& choices)
{
    std::string text;
    for (const auto& [name, value] : choices)
        text += (text.empty() ? "" : "|") + name;
    return text;
}

/// Adds an option with one of the choices. Help shows them once, as the option's type.
template <typename T>
CLI::Option* AddChoice(CLI::App& command, const std::string& option, T& chosen,
                       const Choices<T>& choices, const std::string& description)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : choices)
        names.push_back(name);
    const auto choose = [&chosen, choices](const std::string& text) {
        for (const auto& [name, value] : choices) {
            if (name == text)
                chosen = value;
        }
    };
    return command.add_option_function<std::string>(option, choose, description)
        ->type_name(ToTypeName(choices))
        ->check(CLI::IsMember(names).description(""));
}

/// Lets "-" stand for the standard input.
void AcceptStandardInput(CLI::Option& option);

/// Lets the number of an option not be negative.
void RejectNegative(CLI::Option& option);

/// Adds an option that bounds a list; with 0 all of it is shown.
CLI::Option* AddLimit(CLI::App& command, const std::string& option, ListLimit& limit,
                      const std::string& description);

/// Adds an option that may be given several times, each time with one value.
CLI::Option* AddRepeated(CLI::App& command, const std::string& option,
                         std::vector<std::string>& values, const std::string& description);

/// The form of a report.
enum class EReportFormat : std::uint8_t
{
    PlainText,
    JsonText,
};

/// Adds --format for reports.
CLI::Option* AddReportFormat(CLI::App& command, EReportFormat& format,
                             const std::string& description);

/// A model on the command line, and how it is read.
struct ModelOptions
{
    std::filesystem::path path{};
    ImportOptions open{};
    std::vector<Setting> settings{};
    /// Files of past queries, beside those that the model names.
    std::vector<std::filesystem::path> histories{};
};

/// What MODEL is in the help of most commands.
inline constexpr const char* kModelDescription =
    "Model file (JSON), SQLite database, file of DDL statements, model of another tool or URL of a "
    "database";

/// Adds MODEL.
CLI::Option* AddModelPath(CLI::App& command, std::filesystem::path& path,
                          const std::string& description = kModelDescription);

/// Adds --roles.
CLI::Option* AddRoles(CLI::App& command, ERoles& roles);

/// Adds what says how a database on a server is read, in that group of the help.
void AddServerOptions(CLI::App& command, ServerOptions& options,
                      const std::string& group = "Options");

/// Adds --roles, --set and what AddServerOptions adds, in that group of the help.
void AddModelSettings(CLI::App& command, ModelOptions& options, const std::string& group);

/// Adds --history, in that group of the help.
void AddHistory(CLI::App& command, std::vector<std::filesystem::path>& histories,
                const std::string& group);

/// Returns what the files that the model and the command line name say of past queries, with its
/// notes on the error stream; null when there are none. Throws InputError.
[[nodiscard]] std::shared_ptr<JoinHistory>
OpenHistory(const ToolModel& model, const ModelOptions& options, const CommandContext& context,
            const std::optional<std::string>& database = std::nullopt);

/// Opens the model with its past queries, and writes what reading left out to the error stream.
/// Throws InputError.
[[nodiscard]] ToolModel OpenModelWithNotes(const ModelOptions& options,
                                           const CommandContext& context);

/// Writes sentences about what was left out to the error stream.
void WriteNotes(const std::vector<std::string>& notes, const CommandContext& context);

/// Writes what reading a model left out to the error stream.
void WriteNotes(const ToolModel& model, const CommandContext& context);

} // namespace qe::tool

#endif
