#include "Engine/Model/Model.h"
#include "Tests/Support/SmallGraph.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Answers/CheckPipelines.h"
#include "Toolkit/Check/Baseline.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Model/ModelFile.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>

namespace qe::tool {

namespace {

using test::MakeModel;
using test::SmallGraph;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsSupersetOf;

/// Returns the words with those of a command line behind them.
std::vector<std::string> SplitWords(std::vector<std::string> words, const std::string& line)
{
    bool isQuoted = false;
    bool isNew = true;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\'') {
            isQuoted = !isQuoted;
        } else if (line[i] == ' ' && !isQuoted) {
            isNew = true;
        } else {
            i += line[i] == '\\' && !isQuoted ? 1 : 0;
            if (isNew)
                words.emplace_back();
            isNew = false;
            words.back() += line[i];
        }
    }
    return words;
}

/// Returns "code: place; place | code: place", in the order of the rules.
std::string Summarize(const CheckReport& report)
{
    std::string summary;
    for (const RuleReport& rule : report.rules) {
        for (const Finding& finding : rule.found.findings) {
            const bool goesOn = &finding != &rule.found.findings.front();
            summary += goesOn ? "; " : (summary.empty() ? "" : " | ") + rule.code + ": ";
            summary += finding.placeText;
        }
    }
    return summary;
}

TEST(CheckRules, FindWhatIsWrong)
{
    const struct
    {
        const char* what;
        const char* model;
        const char* findings;
    } cases[] = {
        {"alone", "A(I)", ""},
        {"sound", "F >- A; A >- B", ""},
        {"shortcuts are joined to what they stand for", "F >- A; B(I); S -> A; T -> B",
         "separate-group: B"},
        {"a self-join reaches nothing", "F >- A; B >- B", "unreached-subject: B"},
        {"the largest group is the model", "X - Y; A >- B; B >- C; C >- D", "separate-group: X"},
        {"many to many", "A >-< B : ab; B >- C", "many-to-many: ab"},
        {"parallel joins", "Orders >- Day : ordered; Orders >- Day : shipped",
         "ambiguous-path: Orders - Day"},
        {"F is ambiguous only because it passes over A", "F >- A; A >- B; A >- C; B >- D; C >- D",
         "ambiguous-path: A - D; B - C | fan: A"},
        {"three paths", "F >- A; F >- B; F >- C; A >- D; B >- D; C >- D",
         "ambiguous-path: F - D; A - B; A - C; B - C"},
        {"roles of one dimension", "Ordered -> Day; Shipped -> Day; F >- Ordered; F >- Shipped",
         "ambiguous-path: Day - F"},
        {"too far to look", "A - B; B - C; C - D; A - E; E - F; F - D", ""},
        {"facts meet where their paths first meet",
         "F >- Product; G >- Product; Product >- Line; H >- Region",
         "separate-group: H | chasm: Product"},
        {"facts meet behind dimensions", "F >- A; G >- B; A >- C; B >- C", "chasm: C"},
        {"cycle of dimensions", "F >- A; G >- B; A >- B; B >- A",
         "ambiguous-path: A - B | chasm: A"},
        {"header with lines", "Line >- Header; Header >- Day; Header >- Customer", "fan: Header"},
        {"snowflake", "F >- Product; Product >- Line", ""},
    };
    CheckOptions options;
    options.severities["one-sided-condition"] = ESeverity::Off;
    for (const auto& test : cases)
        EXPECT_EQ(Summarize(CheckModel(MakeModel(test.model), options)), test.findings)
            << test.what;
}

TEST(CheckConditions, MustMentionBothEnds)
{
    CheckOptions options;
    for (const Rule& rule : kRules) {
        if (rule.code != "one-sided-condition")
            options.severities[std::string(rule.code)] = ESeverity::Off;
    }
    const ToolModel model = MakeModel(R"(
        A(K), B(K); S -> A; T -> A
        A >- B : good on [Model].[A].[K] = [Model].[B].[K]
        A >- B : left on [Model].[A].[K] = 1
        A >- B : broken on [Model].[A].[K] =
        A >- B : unknown on [Model].[A].[K] = [Model].[B].[L]
        A >- B : subject on [Model].[A].[K] = [Model].[B]
        A >- B : none
        S >- B : target on [Model].[A].[K] = [Model].[B].[K]
        S >- T : roles on [Model].[S].[K] = [Model].[A].[K]
        moved -> good : S, B
    )");
    const CheckReport report = CheckModel(model, options);
    EXPECT_EQ(Summarize(report),
              "one-sided-condition: left; broken; unknown; subject; none; roles");
    EXPECT_EQ(report.rules.front().found.findings.back().text,
              "The join roles has a condition that does not mention its end T.");
}

/// What the builder refuses can still come from elsewhere.
TEST(CheckBrokenRecords, AreReported)
{
    const amd_id a{0, IdClassQuerySubject, 1};
    const amd_id nothing{0, IdClassShortcut, 1};
    const amd_id lost{0, IdClassRelationshipShortcut, 1};
    std::vector<model::ObjectRecord> records{
        {.id = a, .name = "A"},
        {.id = nothing, .name = "Nothing"},
        {.id = lost, .name = "lost", .left = a, .right = a},
        {.id = {0, IdClassRelationship, 1}, .name = "half", .left = nothing, .right = a},
        {.id = {0, IdClassShortcut, 2}, .name = "Joining", .referenced = lost},
        {.id = {0, IdClassShortcut, 3}, .name = "Good", .referenced = a},
    };
    const CheckReport report = CheckModel(
        {std::make_shared<model::Model>(model::ObjectTable(std::move(records)), "en")}, {});
    EXPECT_EQ(Summarize(report), "unreadable-join: half; lost | empty-shortcut: Nothing; Joining");
    EXPECT_EQ(report.rules[0].found.findings[0].text,
              "The relationship half cannot be read: its left end leads to no query subject. No "
              "path uses it.");
}

TEST(CheckOutput, ShowsCausesWhereThereIsTooMuch)
{
    std::string joins;
    for (int i = 0; i < 30; ++i)
        joins += "A >-< B : j" + std::to_string(i) + ';';
    CheckOptions options;
    options.severities = {{"one-sided-condition", ESeverity::Off},
                          {"many-to-many", ESeverity::Error}};
    const CheckReport report = CheckModel(MakeModel(joins), options);
    EXPECT_EQ(report.GetWorst(), ESeverity::Error);
    EXPECT_EQ(report.Count(ESeverity::Error), 30U);
    const CheckView view{.limit = ListLimit(4)};
    const auto json = ToJson(report, "m", view);
    EXPECT_EQ(json["rules"].back()["total"], 0);
    EXPECT_EQ(json["findings"].size(), 5U);
    EXPECT_EQ(json["findings"][4]["paths"].size(), 4U);
    EXPECT_EQ(json["causes"][0]["total"], 30);
    std::ostringstream lines;
    WriteText(lines, report, view);
    EXPECT_THAT(lines.str(), HasSubstr("error many-to-many: A join has many rows at both ends, 30 "
                                       "times: j0, j1, j2 and 27 more.\n"));
}

TEST(CheckOutput, OneCauseIsTheSubjectThatMostPathsPass)
{
    // Every pair of facts meets at Users and at Day; only X and Y meet at Z too.
    std::string joins = "X >- Z; Y >- Z; P >- Q : one; P >- Q : two;";
    for (const std::string fact : {"V", "W", "X", "Y"})
        joins += fact + " >- Users; " + fact + " >- Day;";
    const CheckReport report = CheckModel(MakeModel(joins), {});
    const auto rule = std::find_if(report.rules.begin(), report.rules.end(),
                                   [](const auto& each) { return each.code == "ambiguous-path"; });
    ASSERT_EQ(rule->causes.size(), 2U);
    EXPECT_EQ(rule->causes[0].name, "Users");
    EXPECT_EQ(rule->causes[0].findings.size(), rule->found.total - 1);
    EXPECT_EQ(rule->found.findings[rule->causes[1].findings.front()].placeText, "P - Q");
    std::ostringstream lines;
    WriteText(lines, report, {.limit = ListLimit(1)});
    EXPECT_THAT(lines.str(), HasSubstr(" times over or to Users: "));
    EXPECT_THAT(lines.str(), HasSubstr("1 more cause with 1 finding (--limit shows more)"));
}

TEST(CheckOutput, SaysWhenTheSearchGaveUp)
{
    CheckOptions options;
    options.limits.pathSteps = 1;
    const CheckReport report = CheckModel(MakeModel("A - B; B - C; C - A"), options);
    const auto rule = std::find_if(report.rules.begin(), report.rules.end(),
                                   [](const auto& each) { return each.code == "ambiguous-path"; });
    EXPECT_EQ(rule->found.notice, "Ambiguous paths were looked for from 1 of 3 subjects only: the "
                                  "limit of steps was reached.");
}

std::set<std::string> IdsOf(const CheckReport& report)
{
    std::set<std::string> ids;
    for (const RuleReport& rule : report.rules) {
        for (const Finding& finding : rule.found.findings)
            EXPECT_TRUE(ids.insert(finding.id).second) << finding.id;
    }
    return ids;
}

TEST(CheckIds, ComeFromNamesAlone)
{
    const std::set<std::string> ids =
        IdsOf(CheckModel(MakeModel("F >- A : ordered; F >- A : shipped; A >-< B : ab; X - Y"), {}));
    EXPECT_THAT(ids, IsSupersetOf({"ambiguous-path/Model.A/Model.F",
                                   "many-to-many/Model.ab(Model.A,Model.B)",
                                   "separate-group/Model.X"}));
    // Another order, and more to find.
    EXPECT_THAT(IdsOf(CheckModel(MakeModel("Alone(I); Y - X; A >-< B : ab; F >- A : shipped;"
                                           "F >- A : ordered; G >- A"),
                                 {})),
                IsSupersetOf({"ambiguous-path/Model.A/Model.F",
                              "many-to-many/Model.ab(Model.A,Model.B)", "separate-group/Model.X",
                              "unreached-subject/Model.Alone"}));
}

TEST(CheckAcceptance, WhatIsAcceptedDoesNotCount)
{
    ToolModel model = MakeModel("F >- A : ordered; F >- A : shipped; A >-< B : ab");
    model.acceptedFindings = {{"ambiguous-path/Model.A/Model.F", "both dates are equal"},
                              {"ambiguous-path/Model.A/Model.G", "gone"}};
    CheckOptions options;
    options.severities["one-sided-condition"] = ESeverity::Off;
    EXPECT_EQ(CheckModel(model, options).Count(ESeverity::Warning), 1U);
    options.baseline = {{"many-to-many/Model.ab(Model.A,Model.B)", "known"},
                        {"one-sided-condition/Model.ab(Model.A,Model.B)", "of a rule that is off"}};
    const CheckReport report = CheckModel(model, options);
    EXPECT_EQ(report.GetWorst(), ESeverity::Off);
    EXPECT_EQ(report.CountAccepted(), 2U);
    ASSERT_EQ(report.idle.size(), 1U);
    std::ostringstream lines;
    WriteText(lines, report, {.accepted = CheckView::EAccepted::Shown});
    EXPECT_THAT(lines.str(),
                HasSubstr("notice: the model accepts what is not found any more: "
                          "ambiguous-path/Model.A/Model.G (did you mean "
                          "ambiguous-path/Model.A/Model.F?)\n"));
    EXPECT_THAT(lines.str(), HasSubstr("accepted warning many-to-many"));
    EXPECT_THAT(lines.str(), HasSubstr("0 warnings, 0 notes; 2 findings accepted\n"));

    // A baseline keeps its own reasons, and leaves to the model what the model accepts.
    const test::TemporaryFolder folder;
    model.acceptedFindings.clear();
    const std::string path = folder.Write(
        "baseline.json", WriteBaselineText(CheckModel(model, options), "for later"));
    const std::vector<AcceptedFinding> baseline = ReadBaseline(path);
    ASSERT_EQ(baseline.size(), 2U);
    EXPECT_EQ(baseline[0].reason, "for later");
    EXPECT_EQ(baseline[1].reason, "known");
    EXPECT_EQ(test::MistakesOf([&] {
                  static_cast<void>(ReadBaseline(folder.Write("bad.json", R"({"finding": []})")));
              }),
              folder / "bad.json" + ": lacks the key \"format\"\n" + folder / "bad.json" +
                  "#/finding: key is unknown: \"finding\" (did you mean findings?)");
}

TEST(CheckAcceptance, TheExamplePasses)
{
    const CheckReport report =
        CheckModel(ReadModelFile(QEREFINER_SOURCE_DIR "/Examples/retail/model.json"), {});
    EXPECT_EQ(report.GetWorst(), ESeverity::Off);
    EXPECT_TRUE(report.idle.empty());
}

TEST(CheckAdvice, Works)
{
    const struct
    {
        const char* rule;
        const char* before;
        const char* after;
    } cases[] = {
        {"one-sided-condition", "A(K), B(K); A >- B : j on [Model].[A].[K] = 1",
         "A(K), B(K); A >- B : j on [Model].[A].[K] = [Model].[B].[K]"},
        {"unreached-subject", "A - B; C(I)", "A - B; B - C"},
        {"unreached-subject", "A - B; C(I)", "A - B"},
        {"separate-group", "A - B; B - C; D - E", "A - B; B - C; D - E; A - D"},
        {"many-to-many", "A >-< B", "X >- A; X >- B"},
        {"many-to-many", "A >-< B", "A >- B"},
        {"fan", "Line >- Header; Header >- Day; Header >- Customer",
         "Line >- Header; Line >- Day; Line >- Customer"},
    };
    const auto find = [](const ToolModel& model, const std::string& code) {
        const CheckReport report = CheckModel(model, {});
        const auto rule = std::find_if(report.rules.begin(), report.rules.end(),
                                       [&code](const auto& each) { return each.code == code; });
        return rule->CountNew();
    };
    for (const auto& test : cases) {
        EXPECT_EQ(find(MakeModel(test.before), test.rule), 1U) << test.before;
        EXPECT_EQ(find(MakeModel(test.after), test.rule), 0U) << test.after;
    }
}

/// The advice for ambiguous paths is a command line.
TEST(CheckAdvice, CommandsDecide)
{
    const test::TemporaryFolder folder;
    for (const char* const text :
         {"F >- A : 'ordered; F >- A : shipped", "F >- A; F >- B; A >- D; B >- D",
          "Ordered -> Day; Shipped -> Day; F >- Ordered; F >- Shipped"}) {
        const std::string path = folder.Write("model.json", WriteModelText(MakeModel(text)));
        const auto findPairs = [&path] {
            const CheckReport report = CheckModel(ReadModelFile(path), {});
            std::vector<Finding> pairs;
            for (const RuleReport& rule : report.rules) {
                if (rule.code == "ambiguous-path")
                    pairs = rule.found.findings;
                EXPECT_TRUE(rule.code.find("decision") == std::string::npos ||
                            rule.found.findings.empty());
            }
            return pairs;
        };
        std::vector<Finding> pairs = findPairs();
        EXPECT_FALSE(pairs.empty()) << text;
        for (std::size_t left = pairs.size(); left > 0; --left) {
            std::string advice = pairs.front().advice;
            const std::size_t begin = advice.find("qerefine path MODEL ") + 20;
            advice = advice.substr(begin, advice.find(" --save") + 7 - begin);
            EXPECT_EQ(test::RunTool(SplitWords({"path", path}, advice)).code, EExitCode::Done);
            pairs = findPairs();
            EXPECT_EQ(pairs.size(), left - 1) << advice;
        }
    }
}

TEST(CheckDecisions, MustAgreeAndBeFollowed)
{
    const auto summarize = [](std::vector<Decision> decisions) {
        ToolModel model = MakeModel("F >- A : fa; G >- A : ga; F >- B : fb; G >- B : gb; H >- B");
        model.decisions = std::move(decisions);
        CheckOptions options;
        for (const Rule& rule : kRules) {
            if (rule.code.find("decision") == std::string_view::npos)
                options.severities[std::string(rule.code)] = ESeverity::Off;
        }
        return Summarize(CheckModel(model, options));
    };
    const ToolModel names = MakeModel("F >- A : fa; G >- A : ga; F >- B : fb; G >- B : gb; H >- B");
    const auto id = [&names](const char* name) {
        const auto found = names.model->FindByName(model::ENameKind::Subject, std::string(name));
        return found.empty()
                   ? names.model->FindByName(model::ENameKind::Join, std::string(name)).front()
                   : found.front();
    };
    const std::vector<amd_id> fg{id("F"), id("G")};
    const std::vector<amd_id> fh{id("F"), id("H")};
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fb"), id("gb")}}}), "");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa"), id("gb")}}}),
              "unfollowed-decision: F, G");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa")}},
                         {.subjects = {id("A"), id("F")}, .avoided = {id("fa")}}}),
              "contradicting-decisions: fa");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa")}},
                         {.subjects = {id("A"), id("F")}, .avoided = {id("fa")}},
                         {.subjects = {id("F"), id("G"), id("A")}, .preferred = {id("fa")}}}),
              "");
}

TEST(CheckPipelines, HaveWhatBuildServersRead)
{
    ToolModel model = MakeModel("F >- A : ordered; F >- A : shipped; A >-< B : a<b");
    model.acceptedFindings = {{"ambiguous-path/Model.A/Model.F", "both \"dates\" are equal"}};
    const CheckReport report = CheckModel(model, {});
    const PipelineContext context{
        .modelName = "my model.json", .toolVersion = "1", .failOn = ESeverity::Error};
    const auto run = ToSarif(report, context)["runs"][0];
    EXPECT_EQ(run["tool"]["driver"]["rules"].size(), kRules.size());
    for (const auto& result : run["results"]) {
        const auto& rule = run["tool"]["driver"]["rules"][result["ruleIndex"].get<std::size_t>()];
        EXPECT_EQ(rule["id"], result["ruleId"]);
        const auto& place = result["locations"][0];
        EXPECT_EQ(place["physicalLocation"]["artifactLocation"]["uri"], "my%20model.json");
        EXPECT_TRUE(place["logicalLocations"][0]["fullyQualifiedName"].is_string());
        EXPECT_FALSE(result["message"]["text"].get<std::string>().empty());
        const bool isAccepted = result["ruleId"] == "ambiguous-path";
        EXPECT_EQ(result.contains("suppressions"), isAccepted);
    }
    const auto write = [&report](PipelineContext pipeline) {
        std::ostringstream out;
        WriteJunit(out, report, pipeline);
        return out.str();
    };
    EXPECT_THAT(write(context), HasSubstr("failures=\"0\" errors=\"0\" skipped=\"1\""));
    EXPECT_THAT(write({.modelName = "m", .failOn = ESeverity::Warning}),
                AllOf(HasSubstr("a&lt;b"), HasSubstr("<failure type=\"warning\""),
                      HasSubstr("<skipped message=\"accepted: both &quot;dates&quot; are equal\"/>"),
                      HasSubstr("<testcase name=\"no finding\" classname=\"m\"/>")));
}

/// The weight of a path that is too long to look at.
constexpr int kLongPath = 3 * 17;

/// Returns whether there are several cheapest paths between two subjects, none of them long, and no
/// subject between the ends lies on all of them.
bool HasSeparatePaths(const SmallGraph& graph, std::size_t from, std::size_t to)
{
    const auto found = graph.FindCheapestTrees({from, to});
    if (!found || found->trees.size() < 2 || found->weight >= kLongPath)
        return false;
    // Where a path passes, two of its joins end.
    std::map<std::size_t, std::size_t> ends;
    for (const SmallGraph::EdgeSet& path : found->trees) {
        for (const std::size_t edge : path) {
            ++ends[graph.edges[edge].end1];
            ++ends[graph.edges[edge].end2];
        }
    }
    return std::none_of(ends.begin(), ends.end(),
                        [&](const auto& count) { return count.second == 2 * found->trees.size(); });
}

TEST(CheckProperty, AmbiguousPairsAreThoseOfAllPathsTried)
{
    std::mt19937 random(20);
    for (int round = 0; round < 150; ++round) {
        std::string text;
        for (int i = 0; i < 11; ++i) {
            const auto node = [&random] { return std::string(1, char('A' + random() % 7)); };
            text += node() + (random() % 4 == 0 ? " >= " : " >- ") + node() + ';';
        }
        const ToolModel model = MakeModel(text);
        const ModelGraph checkedGraph(model);
        SmallGraph graph{checkedGraph.GetSubjects().size(), {}};
        for (const ModelJoin& join : checkedGraph.GetJoins())
            graph.edges.push_back({join.left, join.right, join.weight});
        std::set<std::string> expected;
        for (std::size_t from = 0; from < graph.nodeCount; ++from) {
            for (std::size_t to = from + 1; to < graph.nodeCount; ++to) {
                if (HasSeparatePaths(graph, from, to))
                    expected.insert(checkedGraph.NameOf(from) + " - " + checkedGraph.NameOf(to));
            }
        }
        std::set<std::string> found;
        CheckLimits limits;
        limits.findings = ListLimit::All();
        for (const Finding& finding : FindAmbiguousPaths(checkedGraph, limits).findings)
            found.insert(finding.placeText);
        EXPECT_EQ(found, expected) << text;
    }
}

} // namespace

} // namespace qe::tool
