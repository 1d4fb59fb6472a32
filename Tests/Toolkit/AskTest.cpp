#include "Engine/Model/ModelBuilder.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::MakeModel;
using qe::test::NamesOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const kShop = R"(
    Orders >- Customer : oc
    Orders >- Shipper : os
    Customer >o-o Region : cr
    Shipper >- Region : sr
    Returns >- Customer : rc
    Budget(Amount)
)";

std::string ProblemsOf(const ToolModel& model, const Question& question)
{
    return qe::test::MistakesOf([&] { static_cast<void>(Ask(model, question)); });
}

TEST(AskTest, NamesMatchHoweverTheyAreWrittenAndWrongOnesAreAllTold)
{
    const ToolModel model = MakeModel(kShop);
    for (const char* customer : {"Customer", "customer", "Model.CUSTOMER", "[Customer]", "100:2"})
        EXPECT_EQ(Ask(model, Connect({customer, "Orders"})).path.size(), 1U) << customer;

    Question question = Connect({"Orders", "Region"});
    for (const char* join : {"SR", "Region-Shipper", " shipper - Region", "102:4"}) {
        question.requiredJoins = {join};
        EXPECT_EQ(NamesOf(Ask(model, question), Ask(model, question).path), "os sr") << join;
    }
    question = Connect({"Order", "Nothing like it"});
    question.favouredJoins = {"rs", "Orders-Region"};
    question.secondSet = {"Orders"};
    const std::string problems = ProblemsOf(model, question);
    for (const char* part :
         {"subjects", "\"Order\" (did you mean Orders?)", "\"Nothing like it\"", "favoured joins",
          "\"rs\"", "\"Orders-Region\"", "second set: The operation has no use for this list"})
        EXPECT_THAT(problems, HasSubstr(part));

    qe::model::ModelBuilder builder;
    for (const char* const name : {"North", "South"}) {
        const amd_id space = builder.AddNamespace(name);
        const amd_id a = builder.AddQuerySubject(space, "A");
        builder.AddRelationship(space, "j", {a}, {builder.AddQuerySubject(space, "B")});
    }
    builder.AddQuerySubject(amd_id(), "B");
    const ToolModel twins{builder.Build()};
    EXPECT_THAT(ProblemsOf(twins, Connect({"A", "B"})), HasSubstr("North.A or South.A"));
    const Answer answer = Ask(twins, Connect({"North.a", "north.B"}));
    EXPECT_EQ(answer.NameOf(answer.terminals.front()), "North.A");
    EXPECT_EQ(answer.NameOf(answer.terminals.back()), "North.B") << "B alone is another one";
}

struct ChoiceCase
{
    const char* model;
    const char* path;
    std::string_view criterion;
};

TEST(AskTest, AnswersTellWhatDecided)
{
    const ChoiceCase cases[] = {
        {"A >- M : am; M >- Z : mz", "am mz", decision::kOnlyCandidate},
        {"A >- M : am; M >- Z : mz; A >- L : al; L >- Z : lz", "al lz", decision::kJoinNames},
        {"A >- M : am; M -< Z : mz; A >- N : an; N >- Z : nz", "an nz", "fact tables"},
        {"A >- M : j; M >- Z : j; A >- L : j; L >- Z : j", "j j", decision::kOrder},
    };
    for (const ChoiceCase& entry : cases) {
        const Answer answer = Ask(MakeModel(entry.model), Connect({"A", "Z"}));
        EXPECT_EQ(NamesOf(answer, answer.path), entry.path) << entry.model;
        EXPECT_EQ(answer.criterion, entry.criterion) << entry.model;
        EXPECT_EQ(answer.weight, 34) << entry.model;
        ASSERT_EQ(answer.chosen, 0U);
        EXPECT_EQ(answer.alternatives[0].joins, answer.path);
    }
    Question question = Connect({"A", "Z"});
    question.selector.kind = ESelector::Ask;
    question.selector.choose = [](const Answer& soFar) { return soFar.alternatives.size() - 1; };
    const Answer chosen = Ask(MakeModel(cases[1].model), question);
    EXPECT_EQ(NamesOf(chosen, chosen.path), "am mz");
    EXPECT_EQ(chosen.criterion, decision::kSelector);

    question.selector.choose = [](const Answer&) { return std::size_t{7}; };
    const Answer failed = Ask(MakeModel(cases[1].model), question);
    ASSERT_TRUE(failed.error);
    EXPECT_EQ(failed.error->messages.front().number, 0xA9EC593CU);
}

TEST(AskTest, WeightsAddUpToThoseOfTheRanking)
{
    const ToolModel model = MakeModel(kShop);
    for (const int variant : {0, 1, 2}) {
        Question question = Connect({"Orders", "Region"});
        if (variant == 1)
            question.favouredJoins = {"oc", "os"};
        if (variant == 2)
            question.favouredSubjects = {"Customer", "Shipper"};
        const Answer answer = Ask(model, question);
        ASSERT_EQ(answer.alternatives.size(), 2U);
        for (const Alternative& alternative : answer.alternatives) {
            int sum = 0;
            for (const amd_id& join : alternative.joins)
                sum += answer.FindJoin(join)->weight;
            EXPECT_EQ(sum, alternative.weight) << variant;
        }
    }
}

TEST(AskTest, GovernorsDecideWhatBecomesOfUnconnectedSubjects)
{
    const ToolModel model = MakeModel(kShop);
    Question question = Connect({"Budget", "Orders", "Region"});
    for (const int crossProduct : {0, 1, 2}) {
        question.governors.crossProduct = crossProduct;
        const Answer answer = Ask(model, question);
        EXPECT_FALSE(answer.connected);
        EXPECT_EQ(answer.warnings.size(), crossProduct == 2 ? 0U : 1U);
        EXPECT_EQ(answer.error.has_value(), crossProduct == 2);
        EXPECT_THAT(answer.notices, IsEmpty()) << "failures are no notices";
        ASSERT_EQ(answer.separation.groups.size(), 2U);
        EXPECT_EQ(answer.NameOf(answer.separation.bridge[0]), "Budget");
        EXPECT_EQ(answer.NameOf(answer.separation.bridge[1]), "Orders");
    }
    question.commandType = AQE_RequestContext::CommandTypeDescribe;
    EXPECT_FALSE(Ask(model, question).error);

    question = Connect({"Orders", "Region"});
    question.restriction.withoutSubjects = {"Shipper"};
    question.restriction.withoutJoins = {"cr"};
    EXPECT_EQ(Ask(model, question).separation.groups.size(), 2U);
    question.restriction = {{"Shipper"}, {}, {}, {}};
    const Answer restricted = Ask(model, question);
    EXPECT_EQ(NamesOf(restricted, restricted.path), "os sr");
}

TEST(AskTest, OtherOperationsAnswerToo)
{
    const ToolModel model = MakeModel(kShop);
    Question question = Connect({"Orders", "Region"});
    question.operation = EOperation::BestPaths;
    EXPECT_EQ(Ask(model, question).bestPaths.size(), 2U);
    question.operation = EOperation::JoinedSubjects;
    EXPECT_EQ(Ask(model, question).joinedSubjects.size(), 3U);
    question.operation = EOperation::TreeJoins;
    EXPECT_EQ(Ask(model, question).path.size(), 2U);

    question = Connect({"Budget", "Returns"});
    question.operation = EOperation::PathBetween;
    question.secondSet = {"Shipper", "Region"};
    const Answer between = Ask(model, question);
    EXPECT_EQ(NamesOf(between, between.path), "rc cr");
    ASSERT_EQ(between.endPairs.size(), 1U);
    EXPECT_EQ(between.NameOf(between.endPairs.front().second), "Region");
    question.subjects = {"Orders"};
    EXPECT_EQ(Ask(model, question).alternatives.front().weight, 17) << "to the shipper";
    question.subjects = {"Returns"};
    question.avoidedJoins = {"rc"};
    EXPECT_FALSE(Ask(model, question).connected);
}

TEST(AskTest, PathsPassAvoidedJoinsOnlyWhereNothingElseLeads)
{
    const ToolModel model = MakeModel(kShop);
    const struct
    {
        std::vector<std::string> subjects;
        std::vector<std::string> avoided;
        const char* path;
    } rows[] = {{{"Orders", "Region"}, {"sr"}, "oc cr"},
                {{"Orders", "Region"}, {"cr"}, "os sr"},
                {{"Returns", "Region"}, {"rc", "os"}, "rc cr"}};
    for (const auto& [subjects, avoided, path] : rows) {
        Question question = Connect(subjects);
        question.avoidedJoins = avoided;
        const Answer answer = Ask(model, question);
        EXPECT_EQ(NamesOf(answer, answer.path), path);
    }
}

TEST(AskTest, NoticesReachTheThreadThatAsked)
{
    const qe::SettingsOverride bound("JoinGraph", "CheapestTreesBound", 1);
    const ToolModel model = MakeModel(kShop);
    std::vector<std::vector<std::string>> notices(4);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < notices.size(); ++index)
        threads.emplace_back([&, index] {
            for (int repeat = 0; repeat < 25; ++repeat) {
                const bool isCut = index % 2 == 0;
                notices[index] =
                    Ask(model, Connect({"Orders", isCut ? "Region" : "Customer"})).notices;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(notices[0], ElementsAre(HasSubstr("listed 1 of 2")));
    EXPECT_EQ(notices[2], notices[0]);
    EXPECT_THAT(notices[1], IsEmpty());
    EXPECT_THAT(notices[3], IsEmpty());

    const qe::LogCapture log(1);
    EXPECT_EQ(Ask(model, Connect({"Orders", "Region"})).notices, notices[0]);
    EXPECT_EQ(log.GetEntries().size(), 1U) << "notices do not keep the log from others";
}

} // namespace
