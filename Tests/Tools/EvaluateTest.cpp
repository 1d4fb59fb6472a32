#include "Tools/Evaluate/Evaluator.h"

#include "Tests/Tools/ModelFolder.h"
#include "Tools/Ask/Asker.h"
#include "Tools/Ask/KeyChoice.h"
#include "Tools/Evaluate/EvaluationOutput.h"
#include "Tools/Evaluate/ModelSource.h"
#include "Tools/Import/SqlImport.h"
#include "Tools/InputError.h"
#include "Tools/RunTool.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::ModelFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<NamedPair> ToPairs(const std::string& text)
{
    std::vector<NamedPair> pairs;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        pairs.emplace_back(word.substr(0, word.find('=')), word.substr(word.find('=') + 1));
    return pairs;
}

TEST(ColumnClasses, AreTheSameWhenTheSameColumnsAreMadeEqual)
{
    struct Case
    {
        const char* left;
        const char* right;
        bool isSame;
        bool canBeMade;
    };
    // Whether the left ones are the same as the right ones, and can be made of them.
    const Case cases[] = {
        {"", "", true, true},
        {"a=b", "b=a a=b", true, true},
        {"a=b b=c", "a=c c=b", true, true},
        {"a=b b=c", "a=b", false, false},
        {"a=b", "a=b b=c", false, true},
        {"a=b c=d", "d=c a=b", true, true},
        {"a=b c=d", "a=b b=c c=d", false, true},
        {"a=c", "a=b b=c", false, false},
    };
    for (const Case& test : cases) {
        const ColumnClasses left(ToPairs(test.left));
        EXPECT_EQ(left == ColumnClasses(ToPairs(test.right)), test.isSame) << test.left;
        EXPECT_EQ(left.CanBeMadeOf(ToPairs(test.right)), test.canBeMade) << test.left;
    }
}

TEST(KeyChoice, SplitsNamesIntoWords)
{
    EXPECT_THAT(SplitWords("orderItemID"), ElementsAre("order", "item", "id"));
    EXPECT_THAT(SplitWords("HTTPServer_2 No"), ElementsAre("http", "server", "2", "no"));
    EXPECT_THAT(SplitWords("ORDER_ID"), ElementsAre("order", "id"));
    EXPECT_THAT(SplitWords("key2Value"), ElementsAre("key2", "value"));
    EXPECT_THAT(SplitWords("stra\xc3\x9f"
                           "eName"),
                ElementsAre("stra\xc3\x9f"
                            "e",
                            "name"));
    EXPECT_THAT(SplitWords("__"), IsEmpty());
}

TEST(KeyChoice, TakesThePathThatTheKeysSpeakFor)
{
    const ModelFolder folder;
    const ToolModel model = ImportSql({folder.Write("keys.sql", R"(
CREATE TABLE customer (customerId INTEGER PRIMARY KEY);
CREATE TABLE sale (approvedByCustomerId INT NOT NULL REFERENCES customer,
  customerId INT REFERENCES customer);
CREATE TABLE head (headId INTEGER PRIMARY KEY);
CREATE TABLE item (headId INT NOT NULL REFERENCES head, no INT, PRIMARY KEY (headId, no));
CREATE TABLE part (headId INT NOT NULL REFERENCES head, no INT,
  FOREIGN KEY (headId, no) REFERENCES item);
CREATE TABLE place (id INTEGER PRIMARY KEY);
CREATE TABLE trip (aPlaceId INT REFERENCES place, zPlaceId INT NOT NULL REFERENCES place);
CREATE TABLE walk (aPlaceId INT REFERENCES place, zPlaceId INT REFERENCES place);
)")},
                                      {});
    struct Case
    {
        std::vector<std::string> subjects;
        const char* expected;
        const char* first;
    };
    const Case cases[] = {
        {{"sale", "customer"},
         "sale-customer (customerId)",
         "sale-customer (approvedByCustomerId)"},
        {{"head", "item", "part"}, "item-head part-item", "item-head part-head"},
        {{"trip", "place"}, "trip-place (zPlaceId)", "trip-place (aPlaceId)"},
        {{"walk", "place"}, "walk-place (aPlaceId)", "walk-place (aPlaceId)"},
    };
    for (const Case& test : cases) {
        const auto ask = [&](ESelector selector) {
            Question question;
            question.subjects = test.subjects;
            question.selector.kind = selector;
            question.ranking.useFactTableCount = false;
            const Answer answer = Ask(model, question);
            std::vector<std::string> names;
            for (const amd_id& join : answer.path)
                names.push_back(answer.FindJoin(join)->name);
            std::sort(names.begin(), names.end());
            std::string text;
            for (const std::string& name : names)
                text += (text.empty() ? "" : " ") + name;
            return text;
        };
        EXPECT_EQ(ask(Question().selector.kind), test.expected);
        EXPECT_EQ(ask(ESelector::First), test.first);
    }
}

TEST(KeyChoice, NeverTakesAHeavierPath)
{
    // The heavier path has the better keys.
    Answer answer;
    const auto add = [&answer](int number, const char* condition, int weight) {
        const amd_id id{0, 102, number};
        AnswerJoin join;
        join.id = id;
        join.condition = condition;
        answer.joinsById.emplace(id, join);
        Alternative alternative;
        alternative.joins = {id};
        alternative.weight = weight;
        answer.alternatives.push_back(alternative);
    };
    const auto choose = [&answer] {
        const KeyChoice choice = ChooseByKeys(answer);
        return std::to_string(choice.position) + (choice.isClear ? " clear" : "");
    };
    EXPECT_EQ(choose(), "0");
    add(1, "[a].[b].[old key] = [a].[c].[key]", 17);
    EXPECT_EQ(choose(), "0");
    add(2, "[a].[b].[key] = [a].[c].[key]", 18);
    EXPECT_EQ(choose(), "0");
    answer.alternatives[1].weight = 17;
    EXPECT_EQ(choose(), "1 clear");
    add(3, "[a].[b].[key] = [a].[c].[key]", 17);
    EXPECT_EQ(choose(), "1");
    std::swap(answer.alternatives[0], answer.alternatives[1]);
    EXPECT_EQ(choose(), "0");
    answer.alternatives.pop_back();
    EXPECT_EQ(choose(), "0 clear");
}

const char* const kShop = R"(
CREATE TABLE region (id INTEGER PRIMARY KEY);
CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT REFERENCES region(id));
CREATE TABLE sale (customer_id INT REFERENCES customer(id), payer_id INT REFERENCES customer(id));
CREATE TABLE island (id INTEGER PRIMARY KEY);
)";

const char* const kRequests =
    // The same, written otherwise.
    R"({"id": "a", "db": "shop", "given": "x", "case": "1", "subjects": ["SALE", "region"],
 "joins": [["Region.id", "Customer.region_id"], ["sale.customer_id", "customer.id"]]})"
    "\n"
    // The other key between the two.
    R"({"id": "b", "db": "shop", "given": "x", "case": "2", "subjects": ["sale", "customer"],
 "joins": [["sale.payer_id", "customer.id"]]})"
    "\n"
    // A detour over a third table.
    R"({"id": "c", "db": "shop", "given": "y", "subjects": ["sale", "customer"],
 "joins": [["sale.customer_id", "customer.id"], ["customer.region_id", "region.id"]]})"
    "\n"
    // No key says so.
    R"({"id": "d", "db": "shop", "subjects": ["sale", "customer"],
 "joins": [["sale.customer_id", "customer.region_id"]]})"
    "\n"
    R"({"id": "e", "db": "shop", "subjects": ["sale", "island"], "joins": [["sale.x", "island.id"]]})"
    "\n"
    R"({"id": "f", "db": "shop", "subjects": ["sale", "isle"], "joins": [["sale.x", "isle.id"]]})"
    "\n"
    R"({"id": "g", "db": "none", "subjects": ["sale", "customer"], "joins": [["a.b", "c.d"]]})"
    "\n"
    R"({"id": "h", "db": "two", "subjects": ["sale", "customer"], "joins": [["a.b", "c.d"]]})"
    "\n"
    R"({"id": "i", "db": "shop", "subjects": ["sale", "customer"], "joins": [["a.b"]]})"
    "\n"
    R"({"id": "j", "db": "shop", "subjects": ["sale", "customer"]})"
    "\n"
    "no JSON\n";

/// Each request on a line of its own.
std::string RequestLines()
{
    std::string text = kRequests;
    for (std::size_t at = text.find("\n "); at != std::string::npos; at = text.find("\n "))
        text.erase(at, 1);
    return text;
}

TEST(Evaluate, ComparesWithTheJoinsThatPeopleWrote)
{
    const ModelFolder folder;
    folder.Write("shop.sql", kShop);
    folder.Write("two.sql", kShop);
    folder.Write("two.json", "{}");
    ModelSource models(folder.GetPath(), [](const auto& path) { return ImportSql({path}, {}); });
    std::istringstream requests(RequestLines());
    const Evaluation evaluation = Evaluate(models, requests, {});

    EXPECT_THAT(evaluation.all.counts, ElementsAre(1, 1, 1, 1, 1, 6));
    EXPECT_EQ(evaluation.all.CountEquallyGood(), 2U);
    EXPECT_THAT(evaluation.byGiven.at("x").counts, ElementsAre(1, 1, 0, 0, 0, 0));
    EXPECT_THAT(evaluation.byCase.at("2").counts, ElementsAre(0, 1, 0, 0, 0, 0));
    EXPECT_THAT(evaluation.bySubjects.at(0).counts, ElementsAre(0, 0, 0, 0, 0, 1));

    std::vector<std::string> reasons;
    for (const Difference& difference : evaluation.differences)
        reasons.push_back(difference.id + " " + difference.reason);
    EXPECT_THAT(reasons,
                ElementsAre("b ", "c ", "d ", "e ", HasSubstr("\"isle\""),
                            HasSubstr("no model of this database: none"),
                            HasSubstr("several models of this database: two"),
                            HasSubstr("i /joins"), HasSubstr("j /joins"), HasSubstr("no JSON")));
    const Difference& other = evaluation.differences.front();
    EXPECT_EQ(other.line, 2U);
    EXPECT_EQ(other.onlyWritten, ToPairs("customer.id=sale.payer_id"));
    EXPECT_EQ(other.onlyChosen, ToPairs("customer.id=sale.customer_id"));
}

TEST(EvaluateCommand, WritesTextAndJson)
{
    const ModelFolder folder;
    const std::string requests = folder.Write("requests.jsonl", RequestLines());
    std::filesystem::create_directory(folder.GetPath() / "models");
    folder.Write("models/shop.sql", kShop);
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream error;
    CommandContext context{input, output, error};
    const std::string models = folder.GetPath() / "models";
    ASSERT_EQ(RunTool({"evaluate", models, requests, "--list"}, context), EExitCode::Answered);
    std::istringstream text(output.str());
    std::string line;
    std::getline(text, line);
    std::getline(text, line);
    std::istringstream all(line);
    EXPECT_THAT(
        (std::vector<std::string>(std::istream_iterator<std::string>(all), {})),
        ElementsAre("all", "11", "1", "9.1", "%", "2", "18.2", "%", "1", "1", "1", "1", "6"));
    EXPECT_THAT(output.str(), HasSubstr("line 2 b: other of equally good\n"
                                        "  written only: customer.id = sale.payer_id\n"));

    output.str("");
    ASSERT_EQ(RunTool({"evaluate", models, requests, "--format", "json"}, context),
              EExitCode::Answered);
    const auto json = nlohmann::json::parse(output.str());
    EXPECT_EQ(json["all"]["counts"]["refused"], 6);
    EXPECT_EQ(json["byGiven"]["x"]["same"], 50.0);
    EXPECT_EQ(json["differences"].size(), 10U);
    EXPECT_EQ(RunTool({"evaluate", models + "/none", requests}, context),
              EExitCode::UnreadableInput);
}

/// The shares that the defaults reach on collected requests, which lie outside the project, do
/// not fall.
TEST(Evaluate, AnswersCollectedRequestsAsWellAsBefore)
{
    struct Set
    {
        const char* requests;
        const char* models;
        std::size_t sameOfAll;
        std::size_t sameOfReferenced;
    };
    const Set sets[] = {{"spider", "spider", 621, 156},
                        {"mantle", "mantle.sql", 172, 0},
                        {"imdb", "imdb.sql", 17, 10}};
    const std::filesystem::path data = QEREFINER_DATA_DIR;
    for (const Set& set : sets) {
        const auto file = data / "requests" / (std::string(set.requests) + ".jsonl");
        if (!std::filesystem::exists(file))
            GTEST_SKIP() << "there are no collected requests: " << file;
        ModelSource models(data / "schemas" / set.models,
                           [](const auto& path) { return ImportSql({path}, {}); });
        std::ifstream requests(file);
        const Evaluation evaluation = Evaluate(models, requests, {});
        const auto same = [&](const char* given) {
            return evaluation.byGiven.at(given).Get(EComparison::Same);
        };
        EXPECT_GE(same("all"), set.sameOfAll) << set.requests;
        EXPECT_GE(same("referenced"), set.sameOfReferenced) << set.requests;
        EXPECT_EQ(evaluation.all.Get(EComparison::Refused), 0U) << set.requests;
    }
}

} // namespace
