#include "Tools/qerefine/QuestionOptions.h"

#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputError.h"
#include "Tools/qerefine/CommandContext.h"
#include "Tools/qerefine/PathPrompt.h"

#include <CLI/CLI.hpp>
#include <map>
#include <ostream>

namespace qe::tool {

namespace {

/// Adds an option that may be given several times, each time with one name.
CLI::Option* AddNames(CLI::App& command, const std::string& option, std::vector<std::string>& names,
                      const std::string& kind, const std::string& description)
{
    return command.add_option(option, names, description)->type_name(kind)->allow_extra_args(false);
}

// Help names the values once, as the option's type; the checks add nothing to it.
CLI::Validator OneOf(const std::vector<std::string>& values)
{
    return CLI::IsMember(values).description("");
}

template <typename T>
CLI::Validator NumberOf(const std::map<std::string, T>& values)
{
    return CLI::CheckedTransformer(values).description("");
}

std::string DescribeWrongSetting(const std::string& text)
{
    try {
        static_cast<void>(ParseSetting(text));
        return {};
    } catch (const InputError& error) {
        return error.what();
    }
}

} // namespace

void QuestionOptions::AddModel()
{
    mCommand
        .add_option("MODEL", mModelPath,
                    "Model file (JSON), SQLite database or file of DDL statements")
        ->type_name("")
        ->required();
    mCommand
        .add_option("--roles", mRoles,
                    "For databases and DDL: make shortcuts for tables that "
                    "another one refers to several times")
        ->type_name("plain|shortcuts")
        ->check(OneOf({"plain", "shortcuts"}))
        ->group("Model");
    AddNames(mCommand, "--set", mSettings, "SECTION/KEY=NUMBER",
             "User setting, such as \"General Options/NewAlgo=0\"")
        ->check(CLI::Validator(DescribeWrongSetting, ""))
        ->group("Model");
}

void QuestionOptions::AddSubjects(int minimum)
{
    CLI::Option* const subjects =
        mCommand.add_option("SUBJECT", mQuestion.subjects, "Query subjects and shortcuts");
    subjects->type_name("")->expected(minimum == 0 ? 0 : minimum, -1);
    if (minimum > 0)
        subjects->required();
}

void QuestionOptions::AddTwoSets()
{
    AddNames(mCommand, "--from", mQuestion.subjects, "SUBJECT", "Subject of the first set")
        ->required();
    AddNames(mCommand, "--to", mQuestion.secondSet, "SUBJECT", "Subject of the second set")
        ->required();
}

void QuestionOptions::AddLists(ELists lists)
{
    Restriction& restriction = mQuestion.restriction;
    const auto add = [this](const char* option, std::vector<std::string>& names, const char* kind,
                            const char* description) {
        AddNames(mCommand, option, names, kind, description)->group("Joins and graph");
    };
    if (lists != ELists::Graph) {
        add("--favour", mQuestion.favouredJoins, "JOIN", "Make a join cheap");
        add("--require", mQuestion.requiredJoins, "JOIN", "Use a join in any case");
    }
    if (lists == ELists::Avoidance)
        add("--avoid", mQuestion.avoidedJoins, "JOIN", "Use a join only where nothing else leads");
    add("--only", restriction.onlySubjects, "SUBJECT", "Pass over these subjects only");
    add("--without", restriction.withoutSubjects, "SUBJECT", "Never pass over a subject");
    add("--only-join", restriction.onlyJoins, "JOIN", "Use these joins only");
    add("--without-join", restriction.withoutJoins, "JOIN", "Never use a join");
}

void QuestionOptions::AddFavouredSubjects()
{
    AddNames(mCommand, "--favour-subject", mQuestion.favouredSubjects, "SUBJECT",
             "Make the joins of a subject cheaper")
        ->group("Joins and graph");
}

void QuestionOptions::AddRanking()
{
    mCommand
        .add_flag("--no-fact-tables", mIgnoresFactTables,
                  "Do not rank equally cheap paths by their number of fact tables")
        ->group("Choice");
    mCommand
        .add_flag("--straightest", mQuestion.ranking.useStraightestPath,
                  "Rank paths that branch less before others that are as good")
        ->group("Choice");
}

void QuestionOptions::AddSelector()
{
    mCommand
        .add_option("--selector", mSelector,
                    "Who chooses: of the cheapest paths the one that keys speak for, the "
                    "best-ranked one, the "
                    "first with a main object, or the user")
        ->type_name("keys|first|main-object|ask")
        ->check(OneOf({"keys", "first", "main-object", "ask"}))
        ->group("Choice");
    mCommand
        .add_flag("--check-optional", mQuestion.selector.checkOptional,
                  "A main object has no optional ends, and none is passed")
        ->group("Choice");
    mCommand
        .add_flag("--any-main-object", mAnySubject,
                  "The main object may be any query subject of the path")
        ->group("Choice");
}

void QuestionOptions::AddGovernors()
{
    static const std::map<std::string, std::int32_t> crossProducts{
        {"allow", 0}, {"warn", 1}, {"deny", 2}};
    static const std::map<std::string, std::int32_t> groupings{{"target", 0}, {"container", 1}};
    static const std::map<std::string, AQE_RequestContext::ECommandType> commandTypes{
        {"none", AQE_RequestContext::CommandTypeNone},
        {"query", AQE_RequestContext::CommandTypeQuery},
        {"validate", AQE_RequestContext::CommandTypeValidate},
        {"describe", AQE_RequestContext::CommandTypeDescribe}};
    mCommand
        .add_option("--cross-product", mQuestion.governors.crossProduct,
                    "What happens when subjects cannot be connected")
        ->transform(NumberOf(crossProducts))
        ->type_name("allow|warn|deny")
        ->group("Governors");
    mCommand
        .add_option("--grouping", mQuestion.governors.grouping,
                    "Group shortcuts by what they stand for or by where they are kept")
        ->transform(NumberOf(groupings))
        ->type_name("target|container")
        ->group("Governors");
    mCommand
        .add_option("--command-type", mQuestion.commandType,
                    "What the request is for; \"describe\" never fails for a cross product")
        ->transform(NumberOf(commandTypes))
        ->type_name("none|query|validate|describe")
        ->group("Governors");
}

void QuestionOptions::AddReportFormat()
{
    mCommand.add_option("--format", mReportFormat, "The form of the answer")
        ->type_name("text|json")
        ->check(OneOf({"text", "json"}))
        ->group("Output");
}

ToolModel QuestionOptions::OpenModel(CommandContext& context)
{
    for (const std::string& text : mSettings)
        mQuestion.settings.push_back(ParseSetting(text));
    ApplySettings(mQuestion.settings);
    ImportOptions options;
    options.roles = mRoles == "shortcuts" ? ERoles::Shortcuts : ERoles::Plain;
    ToolModel model = tool::OpenModel(mModelPath, options);
    for (const std::string& note : model.notes)
        context.error << "note: " << ToDisplayText(note) << '\n';
    return model;
}

Question QuestionOptions::MakeQuestion(CommandContext& context)
{
    mQuestion.ranking.useFactTableCount = !mIgnoresFactTables;
    mQuestion.selector.subjectsAreCandidates = !mAnySubject;
    if (mSelector == "first")
        mQuestion.selector.kind = ESelector::First;
    if (mSelector == "main-object")
        mQuestion.selector.kind = ESelector::MainObject;
    if (mSelector == "ask") {
        if (context.terminal.input != Terminal::EStream::Terminal)
            throw CLI::ValidationError("--selector", "\"ask\" needs a terminal to ask on");
        mQuestion.selector.kind = ESelector::Ask;
        mQuestion.selector.choose = [&context](const Answer& soFar) {
            return AskForPath(context, soFar);
        };
    }
    return mQuestion;
}

} // namespace qe::tool
