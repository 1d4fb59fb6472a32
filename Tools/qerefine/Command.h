#ifndef TOOLS_QEREFINE_COMMAND_H
#define TOOLS_QEREFINE_COMMAND_H

#include "Toolkit/Text/InputFile.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace qe::tool {

/// How the tool ended, for the process that called it. The numbers are fixed: scripts test them.
enum class EExitCode : std::uint8_t
{
    Done = 0,
    /// The work is done, and what came of it is negative.
    NegativeResult = 1,
    WrongUsage = 2,
    CannotReadOrWrite = 3,
    /// An error that the library means for its users.
    LibraryError = 4,
    InternalError = 5,
    OutputFailed = 6,
    Risky = 7,
    /// An evaluation falls short of what was asked of it.
    ShareMissed = 8,
};

/// What an exit code means, as the manual page and the documentation word it.
struct ExitCodeMeaning
{
    EExitCode code;
    std::string_view text;
};

inline constexpr std::array kExitCodes{
    ExitCodeMeaning{EExitCode::Done, "done: answered, written, or checked without findings"},
    ExitCodeMeaning{EExitCode::NegativeResult,
                    "done, with a negative result: the subjects cannot be connected, a check has "
                    "findings, or a batch was interrupted or had requests that failed"},
    ExitCodeMeaning{EExitCode::WrongUsage,
                    "wrong use of the command line, also names that the model does not know"},
    ExitCodeMeaning{EExitCode::CannotReadOrWrite,
                    "the model or another input cannot be read, or the result has no such form, "
                    "such as a path that has no SQL"},
    ExitCodeMeaning{EExitCode::LibraryError,
                    "the library reported an error, such as a governor's or a selector's"},
    ExitCodeMeaning{EExitCode::InternalError, "internal error, or out of memory"},
    ExitCodeMeaning{EExitCode::OutputFailed,
                    "the result cannot be delivered: the disk is full, or standard output is "
                    "closed"},
    ExitCodeMeaning{EExitCode::Risky, "answered, with a risk that --fail-on names"},
    ExitCodeMeaning{EExitCode::ShareMissed,
                    "an evaluation was answered the same less often than asked for"},
};

/// What is known of the terminal that the tool stands on.
struct Terminal
{
    enum class EStream : std::uint8_t
    {
        Redirected,
        Terminal,
    };

    EStream input = EStream::Redirected;
    EStream output = EStream::Redirected;
    EStream error = EStream::Redirected;
    /// The width in columns.
    int width = 80;
};

/// What a command works with. The streams outlive the run.
struct CommandContext
{
    std::istream& input;
    /// Data, nothing else.
    std::ostream& output;
    /// Diagnostics and questions to the user.
    std::ostream& error;
    Terminal terminal{};
};

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
    /// Writes the result and returns how the command ended. Throws InputError for what has no such
    /// form.
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

/// Memory ran out.
class MemoryError : public std::exception
{
public:
    explicit MemoryError(const std::string& doing) : mText("out of memory while " + doing) {}

    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }

private:
    std::string mText;
};

/// Returns what `work` returns; where it runs out of memory, that is told of what was being done,
/// such as "reading shop.json".
template <typename Work>
auto NameWork(const std::string& doing, const Work& work)
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw MemoryError(doing);
    }
}

/// Adds the option that names the file for the data of a command.
void AddOutput(CLI::App& command, std::string& file);

/// Does the work, which writes data to the context that it gets and returns how it ended. The file
/// gets the data whole and at the end; it stays as it is when the work fails without any. The empty
/// name and "-" stand for the context's own output. Throws OutputError.
[[nodiscard]] EExitCode Deliver(const CommandContext& context, const std::string& file,
                                const std::function<EExitCode(const CommandContext&)>& work);

/// Adds a subcommand with its help and no options.
inline CLI::App& AddSubcommand(CLI::App& app, const CommandHelp& help)
{
    CLI::App& subcommand = *app.add_subcommand(help.name, help.summary);
    subcommand.footer(std::string("Example:\n  ") + help.example + help.remarks);
    return subcommand;
}

/// Adds the command as a subcommand that runs and reports once its options are parsed, unless one
/// of its own subcommands does. Returns it.
template <typename Options, typename Result>
CLI::App& AddCommand(const CommandLine& line, const Command<Options, Result>& command)
{
    struct Parsed
    {
        Options options{};
        std::string output{};
    };
    const auto parsed = std::make_shared<Parsed>();
    CLI::App& subcommand = AddSubcommand(line.app, command.help);
    command.addOptions(subcommand, parsed->options);
    AddOutput(subcommand, parsed->output);
    subcommand.callback([line, command, parsed, &subcommand] {
        if (!subcommand.get_subcommands().empty())
            return;
        const Options& options = parsed->options;
        line.exitCode = Deliver(line.context, parsed->output, [&](const CommandContext& context) {
            const Result result =
                NameWork("finding the answer", [&] { return command.run(options, context); });
            return NameWork("writing the answer",
                            [&] { return command.report(options, result, context); });
        });
    });
    return subcommand;
}

// One question to the refiner.
void AddPathCommand(const CommandLine& line);
void AddBestCommand(const CommandLine& line);
void AddSubjectsCommand(const CommandLine& line);
void AddBetweenCommand(const CommandLine& line);
void AddTreeCommand(const CommandLine& line);

// What the library makes of a model.
void AddFactsCommand(const CommandLine& line);
void AddShortcutsCommand(const CommandLine& line);
void AddCheckCommand(const CommandLine& line);
void AddShowCommand(const CommandLine& line);

// Files of requests.
void AddBatchCommand(const CommandLine& line);
void AddEvaluateCommand(const CommandLine& line);

// Past queries.
void AddHistoryCommand(const CommandLine& line);

// Models from elsewhere, and for there.
void AddImportCommand(const CommandLine& line);
void AddExportCommand(const CommandLine& line);

// Agents.
void AddMcpCommand(const CommandLine& line);

// The shell.
void AddCompletionCommand(const CommandLine& line);

/// All commands, in the order of the help.
inline constexpr std::array kCommands{
    AddPathCommand,   AddBestCommand,     AddSubjectsCommand,  AddBetweenCommand,
    AddTreeCommand,   AddFactsCommand,    AddShortcutsCommand, AddBatchCommand,
    AddCheckCommand,  AddEvaluateCommand, AddHistoryCommand,   AddImportCommand,
    AddExportCommand, AddShowCommand,     AddMcpCommand,       AddCompletionCommand,
};

} // namespace qe::tool

#endif
