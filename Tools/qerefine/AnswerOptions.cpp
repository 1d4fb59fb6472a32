#include "Tools/qerefine/AnswerOptions.h"

#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/CommandContext.h"

#include <CLI/CLI.hpp>
#include <ostream>

namespace qe::tool {

namespace {

EExitCode ExitCodeOf(const Answer& answer)
{
    if (answer.error)
        return answer.error->kind == AnswerError::EKind::Reported ? EExitCode::LibraryError
                                                                  : EExitCode::InternalError;
    return answer.connected ? EExitCode::Answered : EExitCode::NotConnected;
}

/// Tells on the error stream what a form for programs does not tell on the output.
void WriteRemarks(std::ostream& error, const Answer& answer)
{
    if (!answer.connected && !answer.error)
        error << "qerefine: the subjects cannot be connected\n";
    for (const AnswerMessage& warning : answer.warnings)
        error << "warning: " << ToDisplayText(warning.text) << '\n';
    for (const std::string& notice : answer.notices)
        error << "notice: " << ToDisplayText(notice) << '\n';
}

} // namespace

void AnswerOptions::Add(CLI::App& command)
{
    std::vector<std::string> names;
    std::string types;
    for (const Format& format : GetFormats()) {
        names.emplace_back(format.name);
        types += (types.empty() ? "" : "|") + names.back();
    }
    command.add_option("--format", mFormat, "The form of the answer")
        ->type_name(types)
        ->check(CLI::IsMember(names).description(""))
        ->group("Output");
    command.add_option("--alternatives", mAlternatives, "How many alternatives are shown; 0: all")
        ->type_name("NUMBER")
        ->group("Output");
    command.add_flag("--select", mSelects, "sql: a whole SELECT of the subjects' first items")
        ->group("Output");
    command.add_flag("--inner", mInner, "sql: inner joins only")->group("Output");
    command.add_option("--start", mStart, "sql: begin with this subject, and keep its rows")
        ->type_name("SUBJECT")
        ->group("Output");
}

void AnswerOptions::Write(CommandContext& context, const ToolModel& model, const Question& question,
                          const Answer& answer)
{
    FormatInput input{model, question, answer};
    input.options.alternatives = ListLimit::FromOption(mAlternatives);
    if (mSelects)
        input.options.sql.select = SqlOptions::ESelect::FirstItems;
    if (mInner)
        input.options.sql.outerJoins = SqlOptions::EOuterJoins::Never;
    if (!mStart.empty()) {
        NameResolver names(*model.model);
        const std::vector<amd_id> found = names.ResolveSubjects("--start", {mStart});
        names.ThrowProblems();
        input.options.sql.start = found.front();
    }
    context.exitCode = ExitCodeOf(answer);
    if (answer.error)
        context.error << "qerefine: " << ToDisplayText(answer.error->text) << '\n';
    if (mFormat != "text")
        WriteRemarks(context.error, answer);
    // A failed request has no path, so there is nothing to join.
    if (!answer.error || mFormat != "sql")
        FindFormat(mFormat)->write(context.output, input);
}

} // namespace qe::tool
