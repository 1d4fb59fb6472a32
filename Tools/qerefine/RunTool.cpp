#include "Tools/qerefine/RunTool.h"

#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Tools/qerefine/Command.h"
#include "Tools/qerefine/StandardStreams.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <ostream>

namespace qe::tool {

namespace {

constexpr const char* kVersion = QEREFINER_VERSION;

/// Writes one line for each problem, made harmless for the terminal.
void WriteProblems(std::ostream& error, const InputError& problems)
{
    for (const InputProblem& problem : problems.GetProblems()) {
        std::string line = InputError({problem}).what();
        while (!line.empty() && line.back() == '\n')
            line.pop_back();
        error << ToDisplayText(line) << '\n';
    }
}

/// Parses the arguments, which runs the command that they name.
EExitCode Parse(const std::vector<std::string>& arguments, const CommandContext& context)
{
    CLI::App app("Asks which joins connect the query subjects of a report.", "qerefine");
    app.set_version_flag("--version", kVersion);
    app.require_subcommand(1);
    app.failure_message(CLI::FailureMessage::simple);
    EExitCode exitCode = EExitCode::Done;
    for (const auto addCommand : kCommands)
        addCommand({.app = app, .context = context, .exitCode = exitCode});
    try {
        // The parser takes the arguments from the end.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return exitCode;
    } catch (const CLI::Success& request) {
        app.exit(request, context.output, context.error);
        return EExitCode::Done;
    } catch (const CLI::ParseError& error) {
        app.exit(error, context.output, context.error);
        return EExitCode::WrongUsage;
    }
}

} // namespace

EExitCode RunTool(const std::vector<std::string>& arguments, const CommandContext& context)
{
    try {
        const EExitCode code = Parse(arguments, context);
        context.output.flush();
        return code;
    } catch (const UsageError& error) {
        WriteProblems(context.error, error);
        return EExitCode::WrongUsage;
    } catch (const OutputError& error) {
        // Nothing more goes there, and no further attempt is to throw.
        context.output.exceptions(std::ios::goodbit);
        WriteProblems(context.error, error);
        return EExitCode::OutputFailed;
    } catch (const InputError& error) {
        WriteProblems(context.error, error);
        return EExitCode::CannotReadOrWrite;
    } catch (const MemoryError& error) {
        context.error << "qerefine: " << error.what() << '\n';
        return EExitCode::InternalError;
    } catch (const std::exception& error) {
        context.error << "qerefine: internal error: " << error.what() << '\n';
        return EExitCode::InternalError;
    }
}

} // namespace qe::tool
