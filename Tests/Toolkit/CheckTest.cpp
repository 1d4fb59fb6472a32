#include "Engine/Model/Model.h"
#include "Tests/Support/SmallGraph.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Answers/CheckOutput.h"
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
using testing::HasSubstr;

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

TEST(CheckRules, CompareJoinsWithKeys)
{
    const struct
    {
        const char* keys;
        const char* cardinality;
        const char* findings;
    } cases[] = {
        {R"([["a"]])", "0..1", ""},
        {R"([["b"], ["a"]])", "0..1", ""},
        {R"([["a", "b"]])", "0..1", "not-unique: j"},
        {R"([["a", "b"]])", "0..n", "not-unique: j"},
        {R"([["b"]])", "1..1", "not-unique: j"},
        {"[]", "0..1", ""},
        {"[]", "0..n", "many-to-many: j"},
        {R"([["a"]])", "0..n", "many-to-many: j"},
    };
    for (const auto& test : cases) {
        const std::string model =
            std::string(R"({"subjects": [{"name": "f", "items": ["a"]}, {"name": "p", "items":)") +
            R"( ["a", "b"], "keys": )" + test.keys + R"(}], "relationships": [{"name": "j", )" +
            R"("left": "f", "leftCardinality": "0..n", "right": "p", "rightCardinality": ")" +
            test.cardinality + R"(", "condition": "[f].[a] = [p].[a]"}]})";
        EXPECT_EQ(Summarize(CheckModel(ReadModelText(model, "m"), {})), test.findings) << model;
    }
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
                                       "times.\n    j0, j1, j2 and 27 more\n    advice: "));
}

TEST(CheckOutput, OneCauseIsTheSubjectThatMostPathsPass)
{
    // All facts meet at Users and at Day; Day and Z are joined by two of them.
    std::string joins = "X >- Z; Y >- Z; P >- Q : one; P >- Q : two;";
    for (const std::string fact : {"V", "W", "X", "Y"})
        joins += fact + " >- Users; " + fact + " >- Day;";
    const CheckReport report = CheckModel(MakeModel(joins), {});
    const auto rule = std::find_if(report.rules.begin(), report.rules.end(),
                                   [](const auto& each) { return each.code == "ambiguous-path"; });
    ASSERT_EQ(rule->causes.size(), 3U);
    EXPECT_EQ(rule->causes[0].name, "Users");
    EXPECT_EQ(rule->causes[0].findings.size(), rule->found.total - 2);
    EXPECT_EQ(rule->found.findings[rule->causes[2].findings.front()].placeText, "P - Q");
    std::ostringstream lines;
    WriteText(lines, report, {.limit = ListLimit(1)});
    EXPECT_THAT(lines.str(), HasSubstr(" times, of 3 causes.\n"));
    EXPECT_THAT(lines.str(), HasSubstr(" over or to Users: "));
    EXPECT_THAT(lines.str(), HasSubstr("    2 more causes with 2 findings\n"));
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
    const std::vector<amd_id> fa{id("F"), id("A")};
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fb"), id("gb")}}}), "");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa"), id("gb")}}}),
              "unfollowed-decision: F, G");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa")}},
                         {.subjects = fa, .avoided = {id("fa")}}}),
              "contradicting-decisions: fa");
    EXPECT_EQ(summarize({{.subjects = fg, .preferred = {id("fa")}},
                         {.subjects = fa, .avoided = {id("fa")}},
                         {.subjects = {id("F"), id("A"), id("G")}, .preferred = {id("fa")}}}),
              "");
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
