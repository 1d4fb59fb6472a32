#include "Tools/qerefine/RunTool.h"

#include "Toolkit/Import/Schema/ServerOptions.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Tools/qerefine/Arguments.h"
#include "Tools/qerefine/Command.h"
#include "Tools/qerefine/Completion.h"
#include "Tools/qerefine/StandardStreams.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kVersion = QEREFINER_VERSION;
constexpr std::string_view kOutOfMemory = "qerefine: out of memory\n";

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

/// What the scripts of shells ask with; people do not.
constexpr const char* kCompletingCommand = "complete";

/// Writes a word a line.
void WriteCompletion(const CLI::App& app, const std::vector<std::string>& words,
                     std::ostream& output)
{
    const Completion completion = CompleteWord(app, words);
    for (const std::string& word : completion.words) {
        if (word.find('\n') == std::string::npos)
            output << word << '\n';
    }
    if (completion.takesFiles)
        output << ":files\n";
}

/// Parses the arguments, which runs the command that they name.
EExitCode Parse(const std::vector<std::string>& arguments, const CommandContext& context)
{
    CLI::App app("Asks which joins connect the query subjects of a report.", "qerefine");
    app.set_version_flag("--version", kVersion);
    app.require_subcommand(1);
    EExitCode exitCode = EExitCode::Done;
    for (const auto addCommand : kCommands)
        addCommand({.app = app, .context = context, .exitCode = exitCode});
    if (!arguments.empty() && arguments.front() == kCompletingCommand) {
        WriteCompletion(app, {arguments.begin() + 1, arguments.end()}, context.output);
        return EExitCode::Done;
    }
    try {
        RemoveMarks(app);
        std::vector<std::string> prepared = PrepareArguments(arguments);
        // The parser takes the arguments from the end.
        std::reverse(prepared.begin(), prepared.end());
        app.parse(std::move(prepared));
        return exitCode;
    } catch (const CLI::Success& request) {
        app.exit(request, context.output, context.error);
        return EExitCode::Done;
    } catch (const CLI::ParseError& error) {
        if (const auto unknown = FindUnknownArgument(app, arguments))
            WriteProblems(context.error, InputError({*unknown}));
        else
            context.error << ToDisplayText(error.what()) << '\n';
        context.error << "Run with --help for more information.\n";
        return EExitCode::WrongUsage;
    }
}

} // namespace

namespace {

/// Runs the command; a failure becomes a diagnostic. Where memory is out, that may fail as well.
EExitCode RunAndTell(const std::vector<std::string>& arguments, const CommandContext& context)
{
    try {
        const EExitCode code = Parse(arguments, context);
        context.output.flush();
        return code;
    } catch (const UsageError& error) {
        WriteProblems(context.error, error);
        return EExitCode::WrongUsage;
    } catch (const PatternError& error) {
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
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        context.error << "qerefine: internal error: " << error.what() << '\n';
        return EExitCode::InternalError;
    }
}

} // namespace

EExitCode RunTool(const std::vector<std::string>& arguments, const CommandContext& context)
{
    try {
        return RunAndTell(arguments, context);
    } catch (const std::bad_alloc&) {
        context.error << kOutOfMemory;
        return EExitCode::InternalError;
    }
}

void EndWithoutMemory()
{
    try {
        if (const std::exception_ptr failure = std::current_exception())
            std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        static_cast<void>(std::fwrite(kOutOfMemory.data(), 1, kOutOfMemory.size(), stderr));
        std::_Exit(static_cast<int>(EExitCode::InternalError));
    } catch (...) {
        std::abort();
    }
    std::abort();
}

} // namespace qe::tool
