#ifndef TOOLS_QEREFINE_COMMAND_H
#define TOOLS_QEREFINE_COMMAND_H

#include "Toolkit/Text/InputError.h"
#include "Tools/qerefine/CommandContext.h"
#include "Tools/qerefine/ExitCode.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace qe::tool {

/// Where commands are added. Everything that it refers to outlives the parsing.
struct CommandLine
{
    CLI::App& app;
    const CommandContext& context;
    /// Receives how the command ended.
    EExitCode& exitCode;
};

/// How a command stands in the help.
struct CommandHelp
{
    const char* name;
    const char* summary;
    /// A whole command line.
    const char* example;
    /// What stands behind the example.
    const char* remarks = "";
};

/// A command in three steps: its options are parsed, it runs, and it reports what came of it.
template <typename Options, typename Result>
struct Command
{
    CommandHelp help;
    /// Adds the options, which parsing fills.
    void (*addOptions)(CLI::App& command, Options& options);
    /// Does the work. Diagnostics go to the error stream; only results that do not fit into memory
    /// are written here. Throws UsageError or CLI::ValidationError for wrong arguments, InputError
    /// for what cannot be read.
    Result (*run)(const Options& options, const CommandContext& context);
    /// Writes the result and returns how the command ended. Throws InputError for what cannot be
    /// written.
    EExitCode (*report)(const Options& options, const Result& result,
                        const CommandContext& context);
};

/// Mistakes in what the arguments name, such as subjects that the model does not have.
class UsageError : public InputError
{
public:
    explicit UsageError(const InputError& mistakes) : InputError(mistakes) {}
};

/// Returns what `work` returns; an InputError that it throws is about the arguments.
template <typename Work>
auto BlameArguments(const Work& work)
{
    try {
        return work();
    } catch (const InputError& mistakes) {
        throw UsageError(mistakes);
    }
}

/// Adds a subcommand with its help and no options.
inline CLI::App& AddSubcommand(CLI::App& app, const CommandHelp& help)
{
    CLI::App& subcommand = *app.add_subcommand(help.name, help.summary);
    subcommand.footer(std::string("Example:\n  ") + help.example + help.remarks);
    return subcommand;
}

/// Adds the command as a subcommand that runs and reports once its options are parsed.
template <typename Options, typename Result>
void AddCommand(const CommandLine& line, const Command<Options, Result>& command)
{
    const auto options = std::make_shared<Options>();
    CLI::App& subcommand = AddSubcommand(line.app, command.help);
    command.addOptions(subcommand, *options);
    subcommand.callback([line, command, options] {
        const Result result = command.run(*options, line.context);
        line.exitCode = command.report(*options, result, line.context);
    });
}

} // namespace qe::tool

#endif
