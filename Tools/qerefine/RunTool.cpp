#include "Tools/qerefine/RunTool.h"

#include "Toolkit/Text/InputError.h"
#include "Tools/qerefine/Commands.h"
#include "Tools/qerefine/Diagnostics.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <ostream>

namespace qe::tool {

namespace {

constexpr const char* kVersion = QEREFINER_VERSION;

EExitCode Parse(CLI::App& app, const std::vector<std::string>& arguments, CommandContext& context)
{
    try {
        // The parser takes the arguments from the end.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return context.exitCode;
    } catch (const CLI::Success& request) {
        app.exit(request, context.output, context.error);
        return EExitCode::Answered;
    } catch (const CLI::ParseError& error) {
        app.exit(error, context.output, context.error);
        return EExitCode::WrongUsage;
    }
}

} // namespace

EExitCode RunTool(const std::vector<std::string>& arguments, CommandContext& context)
{
    try {
        CLI::App app("Asks which joins connect the query subjects of a report.", "qerefine");
        app.set_version_flag("--version", kVersion);
        app.require_subcommand(1);
        app.failure_message(CLI::FailureMessage::simple);
        AddCommands(app, context);
        return Parse(app, arguments, context);
    } catch (const InputError& error) {
        WriteProblems(context.error, error);
        return EExitCode::UnreadableInput;
    } catch (const std::exception& error) {
        context.error << "qerefine: internal error: " << error.what() << '\n';
        return EExitCode::InternalError;
    }
}

} // namespace qe::tool
