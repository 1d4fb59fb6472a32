#include "Tools/qerefine/Arguments.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace qe::tool {

namespace {

/// No name and no path ends so.
constexpr char kMark = '\x01';

/// Numbers may be below 0.
bool IsOption(const std::string& argument)
{
    return argument.size() > 1 && argument.front() == '-' && !ascii::IsDigit(argument[1]);
}

/// A word that is near to one of the values is one that was mistyped.
bool IsRolesValue(const std::string& argument)
{
    return !model::NearestNames(argument, {"plain", "shortcuts"}).empty();
}

/// Returns whether words that are neither commands nor options mean something to the command.
bool TakesValues(const CLI::App& command)
{
    const std::vector<const CLI::Option*> options = command.get_options();
    return std::any_of(options.begin(), options.end(),
                       [](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> ListOptions(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options())
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    return names;
}

std::vector<std::string> FindNearest(std::string_view wrong, const std::vector<std::string>& names)
{
    return model::NearestNames(wrong, {names.begin(), names.end()});
}

/// Returns the command of that name; null when there is none.
const CLI::App* FindNext(const CLI::App& app, const std::string& name)
{
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == name)
            return command;
    }
    return nullptr;
}

/// The command that arguments name, and the first word behind it.
struct CommandStart
{
    const CLI::App* command;
    std::optional<std::string> word{};
};

CommandStart ReadCommand(const CLI::App& app, const std::vector<std::string>& arguments)
{
    CommandStart start{&app};
    for (const std::string& argument : arguments) {
        if (IsOption(argument))
            continue;
        const CLI::App* const next = FindNext(*start.command, argument);
        if (next == nullptr) {
            start.word = argument;
            break;
        }
        start.command = next;
    }
    return start;
}

} // namespace

std::vector<std::string> ListCommands(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

const CLI::App& FindCommand(const CLI::App& app, const std::vector<std::string>& words)
{
    return *ReadCommand(app, words).command;
}

std::vector<std::string> PrepareArguments(std::vector<std::string> arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size() && IsRolesValue(arguments[i + 1]);
        if (argument == "--roles" && !hasValue)
            argument += "=shortcuts";
        if (argument.ends_with(']'))
            argument += kMark;
    }
    return arguments;
}

void RemoveMarks(CLI::App& app)
{
    const auto remove = [](std::string& value) {
        if (value.ends_with(kMark))
            value.pop_back();
        return std::string();
    };
    for (CLI::Option* const option : app.get_options()) {
        if (option->get_items_expected_max() > 0)
            option->transform(CLI::Validator(remove, ""));
    }
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; }))
        RemoveMarks(*command);
}

std::optional<InputProblem> FindUnknownArgument(const CLI::App& app,
                                                const std::vector<std::string>& arguments)
{
    const CommandStart start = ReadCommand(app, arguments);
    const CLI::App& command = *start.command;
    const std::vector<std::string> commands = ListCommands(command);
    if (start.word && !commands.empty() && !TakesValues(command))
        return InputProblem{"", "unknown command \"" + *start.word + '"',
                            FindNearest(*start.word, commands)};
    for (const std::string& argument : arguments) {
        if (argument == "--")
            break;
        const std::string name = argument.substr(0, argument.find('='));
        if (!IsOption(name) || command.get_option_no_throw(name) != nullptr)
            continue;
        InputProblem problem{"", "unknown option \"" + name + '"'};
        const std::string_view letters = std::string_view(name).substr(name.find_first_not_of('-'));
        for (const std::string& nearest : FindNearest(letters, ListOptions(command)))
            problem.nearestNames.push_back("--" + nearest);
        return problem;
    }
    return std::nullopt;
}

} // namespace qe::tool
