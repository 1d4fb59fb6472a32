#include "Engine/Model/Model.h"
#include "Tests/Support/ModelText.h"
#include "Tools/Check/CheckOutput.h"
#include "Tools/Check/CheckReport.h"
#include "Tools/Check/CheckedModel.h"
#include "Tools/Model/ToolModel.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>

namespace qe::tool {

namespace {

using test::ModelText;

ToolModel MakeToolModel(const ModelText& text)
{
    ToolModel model;
    model.model = text.GetModel();
    return model;
}

/// Gives "code: place; place | code: place", in the order of the rules.
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

struct CheckCase
{
    const char* name;
    const char* model;
    const char* findings;
};

class CheckRules : public testing::TestWithParam<CheckCase>
{};

TEST_P(CheckRules, FindWhatIsWrong)
{
    const ModelText text(GetParam().model);
    CheckOptions options;
    options.severities["one-sided-condition"] = ESeverity::Off;
    EXPECT_EQ(Summarize(CheckModel(MakeToolModel(text), options)), GetParam().findings);
}

INSTANTIATE_TEST_SUITE_P(
    Models, CheckRules,
    testing::Values(
        CheckCase{"Alone", "A(I)", ""}, CheckCase{"Sound", "F >- A; A >- B", ""},
        CheckCase{"Unreached", "F >- A; B(I); S -> A; T -> B",
                  // The shortcuts are joined to what they stand for.
                  "separate-group: B"},
        CheckCase{"SelfJoinReachesNothing", "F >- A; B >- B", "unreached-subject: B"},
        CheckCase{"LargestGroupIsTheModel", "X - Y; A >- B; B >- C; C >- D", "separate-group: X"},
        CheckCase{"ManyToMany", "A >-< B : ab; B >- C", "many-to-many: ab"},
        CheckCase{"ParallelJoins", "Orders >- Day : ordered; Orders >- Day : shipped",
                  "ambiguous-path: Orders - Day"},
        // A and D are ambiguous; F only because it passes over A.
        CheckCase{"OnlyWherePathsPart", "F >- A; A >- B; A >- C; B >- D; C >- D",
                  "ambiguous-path: A - D; B - C | fan: A"},
        CheckCase{"ThreeWays", "F >- A; F >- B; F >- C; A >- D; B >- D; C >- D",
                  "ambiguous-path: F - D; A - B; A - C; B - C"},
        CheckCase{"RolesOfOneDimension",
                  "Ordered -> Day; Shipped -> Day; F >- Ordered; F >- Shipped",
                  "ambiguous-path: Day - F"},
        CheckCase{"TooFarToLook", "A - B; B - C; C - D; A - E; E - F; F - D", ""},
        CheckCase{"FactsMeetWhereTheirPathsFirstMeet",
                  "F >- Product; G >- Product; Product >- Line; H >- Region",
                  "separate-group: H | chasm: Product"},
        CheckCase{"FactsMeetBehindDimensions", "F >- A; G >- B; A >- C; B >- C", "chasm: C"},
        CheckCase{"CircleOfDimensions", "F >- A; G >- B; A >- B; B >- A",
                  "ambiguous-path: A - B | chasm: A"},
        CheckCase{"HeaderWithLines", "Line >- Header; Header >- Day; Header >- Customer",
                  "fan: Header"},
        CheckCase{"Snowflake", "F >- Product; Product >- Line", ""}),
    [](const auto& named) { return named.param.name; });

TEST(CheckConditions, MustMentionBothEnds)
{
    const ModelText text(R"(
        A(K), B(K); S -> A; T -> A
        A >- B : good on [Model].[A].[K] = [Model].[B].[K]
        A >- B : left on [Model].[A].[K] = 1
        A >- B : broken on [Model].[A].[K] =
        A >- B : unknown on [Model].[A].[K] = [Model].[B].[L]
        A >- B : none
        S >- B : target on [Model].[A].[K] = [Model].[B].[K]
        S >- T : roles on [Model].[S].[K] = [Model].[A].[K]
        moved -> good : S, B
    )");
    CheckOptions options;
    for (const Rule& rule : GetRules()) {
        if (rule.code != "one-sided-condition")
            options.severities[std::string(rule.code)] = ESeverity::Off;
    }
    const CheckReport report = CheckModel(MakeToolModel(text), options);
    EXPECT_EQ(Summarize(report), "one-sided-condition: left; broken; unknown; none; roles");
    EXPECT_EQ(report.rules.front().found.findings.back().text,
              "The join roles has a condition that does not mention its end T.");
}

/// What the builder refuses can still come from elsewhere.
TEST(CheckBrokenRecords, AreTold)
{
    std::vector<model::ObjectRecord> records(6);
    const auto name = [&records](std::size_t i, std::int32_t classCode, const char* text) {
        records[i].id = {0, classCode, static_cast<std::int32_t>(i + 1)};
        records[i].name = text;
        return records[i].id;
    };
    const amd_id a = name(0, IdClassQuerySubject, "A");
    name(1, IdClassShortcut, "Nothing");
    const amd_id lost = name(2, IdClassRelationshipShortcut, "lost");
    name(3, IdClassRelationship, "half");
    name(4, IdClassShortcut, "Joining");
    name(5, IdClassShortcut, "Good");
    records[2].left = records[2].right = records[3].right = records[5].referenced = a;
    records[3].left = records[1].id;
    records[4].referenced = lost;
    ToolModel model;
    model.model = std::make_shared<model::Model>(model::ObjectTable(std::move(records)), "en");
    const CheckReport report = CheckModel(model, {});
    EXPECT_EQ(Summarize(report), "unreadable-join: half; lost | empty-shortcut: Nothing; Joining");
    EXPECT_EQ(report.rules[0].found.findings[0].text,
              "The relationship half cannot be read: its left end leads to no query subject. No "
              "path uses it.");
}

TEST(CheckOutput, CountsWhatItDoesNotShow)
{
    std::string joins;
    for (int i = 0; i < 30; ++i)
        joins += "A >-< B : j" + std::to_string(i) + ';';
    const ModelText text(joins);
    CheckOptions options;
    options.severities = {{"one-sided-condition", ESeverity::Off},
                          {"many-to-many", ESeverity::Error}};
    options.limits.findings = 4;
    const CheckReport report = CheckModel(MakeToolModel(text), options);
    EXPECT_EQ(report.GetWorst(), ESeverity::Error);
    EXPECT_EQ(report.Count(ESeverity::Error), 30U);
    std::ostringstream out;
    WriteCheckJson(report, "m", out);
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_EQ(json["rules"].back()["total"], 0);
    EXPECT_EQ(json["findings"].size(), 5U);
    EXPECT_EQ(json["findings"][4]["paths"].size(), 4U);
    std::ostringstream lines;
    WriteCheckText(report, lines);
    EXPECT_NE(lines.str().find("26 more of 30 are not shown"), std::string::npos) << lines.str();
}

TEST(CheckOutput, TellsWhenTheSearchGaveUp)
{
    const ModelText text("A - B; B - C; C - A");
    CheckOptions options;
    options.limits.pathSteps = 1;
    const CheckReport report = CheckModel(MakeToolModel(text), options);
    const auto rule = std::find_if(report.rules.begin(), report.rules.end(),
                                   [](const auto& each) { return each.code == "ambiguous-path"; });
    EXPECT_EQ(rule->found.notice, "Ambiguous paths were looked for from 1 of 3 subjects only: the "
                                  "limit of steps was reached.");
}

/// All cheapest simple paths between two subjects, by trying every path.
class PathOracle
{
public:
    explicit PathOracle(const CheckedModel& model) : mModel(model) {}

    /// Tells whether there are several and no subject between the ends lies on all of them.
    bool HasSeparatePaths(std::size_t from, std::size_t to)
    {
        mBest = std::numeric_limits<int>::max();
        mInner.clear();
        std::vector<std::size_t> passed{from};
        Walk(passed, to, 0);
        std::set<std::size_t> common = mInner.empty() ? std::set<std::size_t>() : mInner.front();
        for (const std::set<std::size_t>& inner : mInner) {
            for (auto it = common.begin(); it != common.end();)
                it = inner.count(*it) == 0 ? common.erase(it) : std::next(it);
        }
        return mInner.size() > 1 && common.empty();
    }
    [[nodiscard]] int GetBest() const { return mBest; }

private:
    void Walk(std::vector<std::size_t>& passed, std::size_t to, int weight)
    {
        if (weight > mBest)
            return;
        if (passed.back() == to) {
            if (weight < mBest)
                mInner.clear();
            mBest = weight;
            mInner.emplace_back(passed.begin() + 1, passed.end() - 1);
            return;
        }
        for (const CheckedModel::Step& step : mModel.GetSteps(passed.back())) {
            if (std::find(passed.begin(), passed.end(), step.subject) != passed.end())
                continue;
            passed.push_back(step.subject);
            Walk(passed, to, weight + mModel.GetJoins()[step.join].weight);
            passed.pop_back();
        }
    }

    const CheckedModel& mModel;
    int mBest = 0;
    std::vector<std::set<std::size_t>> mInner;
};

TEST(CheckProperty, AmbiguousPairsAreThoseOfAllPathsTried)
{
    std::mt19937 random(20);
    for (int round = 0; round < 150; ++round) {
        std::string text;
        for (int i = 0; i < 11; ++i) {
            const auto node = [&random] { return std::string(1, char('A' + random() % 7)); };
            text += node() + (random() % 4 == 0 ? " >= " : " >- ") + node() + ';';
        }
        const ModelText model(text);
        const ToolModel toolModel = MakeToolModel(model);
        const CheckedModel checked(toolModel);
        PathOracle oracle(checked);
        std::set<std::string> expected;
        const std::size_t subjects = checked.GetSubjects().size();
        for (std::size_t from = 0; from < subjects; ++from) {
            for (std::size_t to = from + 1; to < subjects; ++to) {
                if (oracle.HasSeparatePaths(from, to) && oracle.GetBest() < 3 * 17)
                    expected.insert(checked.NameOf(from) + " - " + checked.NameOf(to));
            }
        }
        std::set<std::string> found;
        CheckLimits limits;
        limits.findings = 100;
        for (const Finding& finding : FindAmbiguousPaths(checked, limits).findings)
            found.insert(finding.placeText);
        EXPECT_EQ(found, expected) << text;
    }
}

} // namespace

} // namespace qe::tool
