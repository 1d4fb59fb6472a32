#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Answers/CheckPipelines.h"
#include "Toolkit/Check/Baseline.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Model/ModelFile.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace qe::tool {

namespace {

using test::MakeModel;
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
            if (line[i] == '\\' && !isQuoted)
                ++i;
            if (isNew)
                words.emplace_back();
            isNew = false;
            words.back() += line[i];
        }
    }
    return words;
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
    EXPECT_THAT(ids,
                IsSupersetOf({"ambiguous-path/Model.A/Model.F",
                              "many-to-many/Model.ab(Model.A,Model.B)", "separate-group/Model.X"}));
    // Another order, and more to find.
    EXPECT_THAT(
        IdsOf(CheckModel(MakeModel("Alone(I); Y - X; A >-< B : ab; F >- A : shipped;"
                                   "F >- A : ordered; G >- A"),
                         {})),
        IsSupersetOf({"ambiguous-path/Model.A/Model.F", "many-to-many/Model.ab(Model.A,Model.B)",
                      "separate-group/Model.X", "unreached-subject/Model.Alone"}));
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
    EXPECT_THAT(lines.str(), HasSubstr("notice: the model accepts what is not found any more: "
                                       "ambiguous-path/Model.A/Model.G (did you mean "
                                       "ambiguous-path/Model.A/Model.F?)\n"));
    EXPECT_THAT(lines.str(), HasSubstr("accepted warning many-to-many"));
    EXPECT_THAT(lines.str(), HasSubstr("0 warnings, 0 notes; 2 findings accepted\n"));

    // A baseline keeps its own reasons, and leaves to the model what the model accepts.
    const test::TemporaryFolder folder;
    model.acceptedFindings.clear();
    const std::string path =
        folder.Write("baseline.json", WriteBaselineText(CheckModel(model, options), "for later"));
    const std::vector<AcceptedFinding> baseline = ReadBaseline(path);
    ASSERT_EQ(baseline.size(), 2U);
    EXPECT_EQ(baseline[0].reason, "for later");
    EXPECT_EQ(baseline[1].reason, "known");
    EXPECT_EQ(test::MistakesOf([&] {
                  static_cast<void>(ReadBaseline(folder.Write("bad.json", R"({"finding": []})")));
              }),
              folder / "bad.json" + "#: lacks the key \"format\"");
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
    EXPECT_THAT(
        write({.modelName = "m", .failOn = ESeverity::Warning}),
        AllOf(HasSubstr("a&lt;b"), HasSubstr("<failure type=\"warning\""),
              HasSubstr("<skipped message=\"accepted: both &quot;dates&quot; are equal\"/>"),
              HasSubstr("<testcase name=\"no finding\" classname=\"m\"/>")));
}

} // namespace

} // namespace qe::tool
