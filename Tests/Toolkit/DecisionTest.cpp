#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/DecisionSaver.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/JsonEdit.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <random>
#include <set>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::NamesOf;
using qe::test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Facts F and G share A and B, and a detour by C and D.
std::string StarText(const std::string& members)
{
    std::string text = R"({ "subjects": ["F", "G", "A", "B", "C", "D"], "relationships": [)";
    std::string separator;
    for (const std::string ends : {"FA", "GA", "FB", "GB", "FC", "CD", "DG"}) {
        text += separator + R"({"name": ")" + ends + R"(", "left": ")" + ends[0] +
                R"(", "right": ")" + ends[1] +
                R"(", "leftCardinality": "1..n", "rightCardinality": "1..1"})";
        separator = ", ";
    }
    return text + "]" + members + " }";
}

ToolModel Star(const std::string& decisions)
{
    return ReadModelText(StarText(R"(, "decisions": [)" + decisions + "]"), "star.json");
}

std::string Answered(const ToolModel& model, const Question& question)
{
    const Answer answer = Ask(model, question);
    return NamesOf(answer, answer.path);
}

TEST(DecisionTest, MistakesAreToldAtTheirPlaces)
{
    const struct
    {
        const char* decisions;
        const char* mistake;
    } cases[] = {
        {R"({"subjects": ["F", "Gg"], "prefer": ["FA"]})",
         "#/decisions/0/subjects/1: names a query subject or shortcut that is not in the model: "
         "\"Gg\" (did you mean G?)"},
        {R"({"prefer": ["FAB"]})",
         "#/decisions/0/prefer/0: names a join that is not in the model: \"FAB\" (did you mean"},
        {R"({"avoid": [{"class": 102, "id": 99}]})",
         "#/decisions/0/avoid/0: names a join that is not in the model: 102:99"},
        {R"({"prefer": ["FA", "FB"], "avoid": ["FB"]})",
         "#/decisions/0/avoid/0: is both preferred and avoided: \"FB\""},
        {R"({"subjects": ["F", "G"], "prefer": ["FA"]}, {"subjects": ["g", "f"], "avoid": ["FA"]})",
         "#/decisions/1: is about the same subjects as another: /decisions/0"},
        {R"({"subjects": ["F"]})", "#/decisions/0: must prefer or avoid a join"},
        {R"({"prefer": ["FA"], "because": ""})", "#/decisions/0/because: key is unknown"},
        {R"({"prefer": "FA"})", "#/decisions/0/prefer: must be a list, not a string"},
        {R"([])", "#/decisions/0: must be an object, not a list"},
    };
    for (const auto& test : cases) {
        const std::string mistakes = qe::test::MistakesOf([&] { Star(test.decisions); });
        EXPECT_THAT(mistakes, HasSubstr(std::string("star.json") + test.mistake));
        EXPECT_THAT(mistakes, Not(HasSubstr("\n"))) << test.decisions;
    }
    EXPECT_EQ(qe::test::MistakesOf([] {
                  static_cast<void>(ReadModelText(
                      StarText(R"(, "acceptedFindings": [{"id": "x", "reason": ""}])"), "m"));
              }),
              "m#/acceptedFindings/0/reason: must not be empty");
}

TEST(DecisionTest, HoldsForQuestionsThatNameItsSubjects)
{
    const ToolModel model = Star(R"({"subjects": ["G", "F"], "prefer": ["FB", "GB"]},
                                    {"avoid": ["FB"], "reason": "slow"})");
    EXPECT_EQ(Answered(model, Connect({"F", "G"})), "FB GB");
    const Answer answer = Ask(model, Connect({"F", "G"}));
    EXPECT_EQ(answer.criterion, "preferred in the model");
    ASSERT_EQ(answer.decisions.size(), 1U);
    EXPECT_EQ(DescribeDecision(answer.decisions[0]), "For F, G the model prefers FB, GB");

    // More subjects than it names, and fewer.
    EXPECT_THAT(Answered(model, Connect({"F", "G", "C"})), HasSubstr("FB"));
    const Answer other = Ask(model, Connect({"F", "A", "B"}));
    EXPECT_EQ(NamesOf(other, other.path), "FA GA GB");
    EXPECT_EQ(DescribeDecision(other.decisions[0]), "Everywhere the model avoids FB: slow");
    // Where nothing else leads.
    Question question = Connect({"F", "B"});
    question.restriction.withoutSubjects = {"G"};
    EXPECT_EQ(Answered(model, question), "FB");
}

TEST(DecisionTest, WhatTheQuestionSaysGoesFirst)
{
    const ToolModel model = Star(R"({"subjects": ["F", "G"], "prefer": ["FB"], "avoid": ["GA"]})");
    Question question = Connect({"F", "G"});
    question.favouredJoins = {"GA"};
    EXPECT_EQ(Answered(model, question), "FA GA");
    question = Connect({"F", "G"});
    question.restriction.withoutJoins = {"FB"};
    EXPECT_EQ(Answered(model, question), "FC CD DG");
    for (const EOperation operation :
         {EOperation::TreeJoins, EOperation::PathBetween, EOperation::BestPaths}) {
        question = Connect({"F"});
        question.operation = operation;
        (operation == EOperation::PathBetween ? question.secondSet : question.subjects)
            .push_back("G");
        const Answer answer = Ask(model, question);
        EXPECT_EQ(NamesOf(answer, answer.path.empty() ? answer.bestPaths.at(0) : answer.path),
                  "FB GB");
    }
}

std::set<amd_id> ToSet(const std::vector<amd_id>& joins)
{
    return {joins.begin(), joins.end()};
}

/// Whatever candidate is insisted on, it is the answer once it is saved; nothing else of the file
/// changes.
TEST(DecisionProperty, WhatIsSavedIsTheAnswer)
{
    std::mt19937 random(3);
    int saved = 0;
    for (int round = 0; round < 60; ++round) {
        std::string text = "A, B, C;";
        for (int i = 0; i < 12; ++i) {
            const auto node = [&random] { return std::string(1, char('A' + random() % 7)); };
            text += node() + " >- " + node() + " : j" + std::to_string(i) + ';';
        }
        std::string file = WriteModelText(qe::test::MakeModel(text));
        const std::string before = file;
        for (int choice = 0; choice < 3; ++choice) {
            const ToolModel model = ReadModelText(file, "m");
            Question question = Connect({"A", "B", "C"});
            const std::vector<Alternative> candidates = Ask(model, question).alternatives;
            if (candidates.empty())
                continue;
            for (const amd_id& join : candidates[random() % candidates.size()].joins)
                question.requiredJoins.push_back(JoinName(*model.model, join));
            const Answer answer = Ask(model, question);
            const auto decision = FindDecision(
                {.model = model, .question = question, .answer = answer, .reason = "so"});
            if (!decision)
                continue;
            file = AddDecision(file, model, *decision);
            const ToolModel after = ReadModelText(file, "m");
            EXPECT_EQ(after.decisions.size(), 1U);
            EXPECT_EQ(ToSet(Ask(after, Connect({"C", "A", "B"})).path), ToSet(answer.path)) << file;
            ++saved;
        }
        ToolModel stripped = ReadModelText(file, "m");
        stripped.decisions.clear();
        EXPECT_EQ(WriteModelText(stripped), before);
    }
    EXPECT_GT(saved, 30);
}

TEST(JsonEdit, LeavesEveryOtherByteAsItIs)
{
    const nlohmann::ordered_json one = 1;
    EXPECT_EQ(AppendElement("{}", "k", one), "{\n  \"k\": [\n    1\n  ]\n}");
    EXPECT_EQ(AppendElement("{ \"a\" : \"]}\\\"\" }\n", "k", one),
              "{ \"a\" : \"]}\\\"\",\n  \"k\": [\n    1\n  ]\n}\n");
    EXPECT_EQ(AppendElement("\xEF\xBB\xBF{\r\n\t\"k\" : [ ]\r\n}", "k", one),
              "\xEF\xBB\xBF{\r\n\t\"k\" : [ \r\n    1\r\n  ]\r\n}");
    EXPECT_EQ(AppendElement("{\"\\u006b\":[[0],{\"k\":2}],\"x\":3}", "k", one),
              "{\"\\u006b\":[[0],{\"k\":2},\n    1\n  ],\"x\":3}");
    EXPECT_EQ(ReplaceElement("{\"x\":[9], \"k\":[ {\"a\":[1,2]} ,\t-2.5e3]}", "k", 1, one),
              "{\"x\":[9], \"k\":[ {\"a\":[1,2]} ,\t1]}");
}

/// The tool on a model file.
class SaveTest : public testing::Test
{
protected:
    ToolRun RunPath(std::vector<std::string> more) const
    {
        std::vector<std::string> arguments{"path", mFile, "F", "G"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return qe::test::RunTool(arguments);
    }

    qe::test::TemporaryFolder mFolder;
    std::string mFile = mFolder.Write("star.json", StarText("\r\n"));
};

TEST_F(SaveTest, LaterQuestionsFollow)
{
    EXPECT_THAT(RunPath({"--without", "A", "--without", "B", "--save", "--everywhere"}).error,
                HasSubstr("Everywhere the model prefers FC, CD, DG"));
    const ToolRun run = RunPath({"--require", "FB", "--save", "--reason", "B is meant"});
    EXPECT_EQ(run.code, EExitCode::Done);
    EXPECT_THAT(run.error, HasSubstr("saved in " + mFile +
                                     ": For F, G the model prefers FB, GB: B is meant\n"));
    EXPECT_THAT(RunPath({}).output, HasSubstr("Decided by: preferred in the model\n"
                                              "For F, G the model prefers FB, GB: B is meant"));
    EXPECT_THAT(mFolder.Read("star.json"), HasSubstr("],\r\n  \"decisions\": [\r\n"));
    const std::string page = RunPath({"--format", "json"}).output;
    EXPECT_EQ(nlohmann::json::parse(page)["decisions"][0]["prefer"],
              nlohmann::json::parse(R"(["FB", "GB"])"));

    EXPECT_THAT(RunPath({"--require", "FA", "--save", "--everywhere"}).error,
                HasSubstr("the model answers FB, GB, and what else it decides"));
    EXPECT_THAT(RunPath({"--require", "GA", "--save"}).error, HasSubstr("prefers FA, GA"));
    EXPECT_THAT(RunPath({}).output, HasSubstr("For F, G the model prefers FA, GA"));
}

TEST_F(SaveTest, ThePageShowsTheCommandAndThePictureTheDecision)
{
    const ToolRun page = RunPath({"--format", "html"});
    if (page.code == EExitCode::CannotReadOrWrite)
        GTEST_SKIP() << page.error;
    EXPECT_THAT(page.output, HasSubstr("qerefine path " + mFile +
                                       " F G --require FA --require GA --save</code>"));
    EXPECT_THAT(page.output, HasSubstr("qerefine path " + mFile +
                                       " F G --require FB --require GB --save</code>"));
    EXPECT_EQ(RunPath({"--require", "FB", "--require", "GB", "--save"}).code, EExitCode::Done);
    EXPECT_THAT(qe::test::RunTool({"show", mFile, "--format", "dot"}).output,
                HasSubstr(" preferred "));
}

TEST_F(SaveTest, RefusesWhatCannotKeepIt)
{
    const std::string before = mFolder.Read("star.json");
    const std::string tables = mFolder.Write("t.sql", "CREATE TABLE a(x); CREATE TABLE b(x);");
    const ToolRun ddl = qe::test::RunTool({"path", tables, "a", "b", "--save"});
    EXPECT_EQ(ddl.code, EExitCode::WrongUsage);
    EXPECT_EQ(ddl.error, "--save: only a model file keeps decisions, and this is none: " + tables +
                             " (qerefine import makes one)\n");
    EXPECT_EQ(RunPath({"--save", "--set", "General Options/FFJoins=1"}).code,
              EExitCode::WrongUsage);
    EXPECT_EQ(RunPath({"--reason", "x"}).code, EExitCode::WrongUsage);
    EXPECT_EQ(
        RunPath({"--without-join", "FA", "--without-join", "FB", "--without-join", "FC", "--save"})
            .code,
        EExitCode::NegativeResult);
    EXPECT_EQ(mFolder.Read("star.json"), before);
    EXPECT_EQ(qe::test::RunTool({"path", mFile, "F", "A", "--save"}).error,
              "qerefine: nothing to save: the model answers so without a decision\n");
}

} // namespace
