#include "Toolkit/Agent/AgentServer.h"

#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Agent/ModelShelf.h"
#include "Toolkit/Agent/Revision.h"
#include "Toolkit/Agent/ToolList.h"
#include "Toolkit/Sql/SqlDialect.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using nlohmann::json;
using qe::test::ImportText;
using qe::test::MakeModel;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kNewest = "2026-07-28";

/// Two ways from a sale to a region, each as cheap; and an island.
constexpr const char* kTwoWays = R"(
    Sale >- Store : ss
    Sale >- Customer : sc
    Store >- Region : sr
    Customer >- Region : cr
    Sale >- Product : sp
    Return >- Product : rp
    Island
)";

ServedModel Serve(const std::string& name, ToolModel model)
{
    return {.name = name, .source = name + ".json", .model = model, .asked = model};
}

/// A client that says everything at once and then hears the answers.
class AgentTest : public testing::Test
{
protected:
    AgentTest() { UseModels({Serve("shop", MakeModel(kTwoWays))}); }

    void UseModels(std::vector<ServedModel> models)
    {
        mShelf = std::make_unique<ModelShelf>(std::move(models));
    }

    /// Returns the lines that come back.
    [[nodiscard]] std::vector<json> Say(const std::vector<std::string>& lines,
                                        std::size_t threads = 1) const
    {
        std::string text;
        for (const std::string& line : lines)
            text += line + '\n';
        std::istringstream input(text);
        std::ostringstream output;
        ServeAgent(*mShelf, input, output,
                   {.identity = {.version = "7"}, .threads = threads, .longestMessage = 4096});
        std::vector<json> answers;
        std::istringstream told(output.str());
        for (std::string line; std::getline(told, line);)
            answers.push_back(json::parse(line));
        return answers;
    }

    [[nodiscard]] static std::string Initialize(const std::string& revision)
    {
        return json{{"jsonrpc", "2.0"},
                    {"id", "open"},
                    {"method", "initialize"},
                    {"params", {{"protocolVersion", revision}}}}
            .dump();
    }

    [[nodiscard]] static json MakeRequest(const json& id, const std::string& method,
                                          json params = json::object())
    {
        return {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(params)}};
    }

    /// Returns a request of the newest revision.
    [[nodiscard]] static std::string Ask(const json& id, const std::string& method,
                                         json params = json::object())
    {
        params["_meta"] = {{"io.modelcontextprotocol/protocolVersion", kNewest},
                           {"io.modelcontextprotocol/clientCapabilities", json::object()}};
        return MakeRequest(id, method, std::move(params)).dump();
    }

    [[nodiscard]] static std::string AskTool(const json& id, const std::string& tool,
                                             const json& arguments)
    {
        return Ask(id, "tools/call", {{"name", tool}, {"arguments", arguments}});
    }

    /// Returns the result of one call.
    [[nodiscard]] json Call(const std::string& tool, const json& arguments) const
    {
        const std::vector<json> answers = Say({AskTool(1, tool, arguments)});
        return answers.empty() ? json() : answers.front().value("result", json());
    }
    /// Returns what the call tells programs.
    [[nodiscard]] json Content(const std::string& tool, const json& arguments) const
    {
        const json result = Call(tool, arguments);
        EXPECT_FALSE(result.value("isError", true)) << result;
        return result.value("structuredContent", json::object());
    }
    /// Returns what the call tells the model behind the agent.
    [[nodiscard]] std::string Text(const std::string& tool, const json& arguments) const
    {
        return Call(tool, arguments)["content"][0]["text"];
    }

private:
    std::unique_ptr<ModelShelf> mShelf;
};

TEST_F(AgentTest, HandshakesSettleTheRevision)
{
    const std::map<std::string, std::string> cases{{"2025-11-25", "2025-11-25"},
                                                   {"2025-06-18", "2025-06-18"},
                                                   {"2024-11-05", "2024-11-05"},
                                                   {kNewest, "2025-11-25"},
                                                   {"1999-01-01", "2025-11-25"}};
    for (const auto& [asked, settled] : cases) {
        const json answer = Say({Initialize(asked)}).at(0);
        EXPECT_EQ(answer["result"]["protocolVersion"], settled) << asked;
        EXPECT_TRUE(answer["result"]["capabilities"].contains("tools"));
        EXPECT_EQ(answer["result"]["serverInfo"], json({{"name", "qerefine"}, {"version", "7"}}));
        EXPECT_EQ(answer["id"], "open");
    }
}

TEST_F(AgentTest, ResultsHaveTheFormOfTheirRevision)
{
    const json call =
        MakeRequest(2, "tools/call", {{"name", "describe"}, {"arguments", json::object()}});
    const auto askAs = [&](const std::string& revision) {
        const auto answers = Say({Initialize(revision), MakeRequest(1, "tools/list").dump(),
                                  MakeRequest(3, "ping").dump(), call.dump()});
        EXPECT_EQ(answers.size(), 4U);
        EXPECT_EQ(answers[2], json({{"jsonrpc", "2.0"}, {"id", 3}, {"result", json::object()}}));
        return answers;
    };
    const std::vector<json> old = askAs("2025-03-26");
    EXPECT_FALSE(old[1]["result"]["tools"][0].contains("outputSchema"));
    EXPECT_FALSE(old[3]["result"].contains("structuredContent"));
    EXPECT_EQ(json::parse(old[3]["result"]["content"][1]["text"].get<std::string>())["kind"],
              "model");
    const std::vector<json> structured = askAs("2025-11-25");
    EXPECT_TRUE(structured[1]["result"]["tools"][0].contains("outputSchema"));
    EXPECT_EQ(structured[3]["result"]["structuredContent"]["kind"], "model");
    EXPECT_EQ(structured[3]["result"]["content"].size(), 1U);
    EXPECT_FALSE(structured[3]["result"].contains("resultType"));

    const json list = Say({Ask(1, "tools/list")}).at(0)["result"];
    EXPECT_EQ(list["resultType"], "complete");
    EXPECT_GT(list["ttlMs"], 0);
    EXPECT_EQ(list["_meta"]["io.modelcontextprotocol/serverInfo"]["name"], "qerefine");
    EXPECT_EQ(list["tools"], structured[1]["result"]["tools"]);
    const json found = Say({Ask(1, "server/discover")}).at(0)["result"];
    EXPECT_THAT(found["supportedVersions"],
                ElementsAre(kNewest, "2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"));
    EXPECT_EQ(Call("describe", json::object())["resultType"], "complete");
}

TEST_F(AgentTest, WhatCannotBeAnsweredGetsTheCodeOfItsFault)
{
    struct Case
    {
        std::string line;
        int code;
        json id{};
    };
    json other = json::parse(Ask(5, "tools/list"));
    other["params"]["_meta"]["io.modelcontextprotocol/protocolVersion"] = "2031-01-01";
    json poor = json::parse(Ask(5, "tools/list"));
    poor["params"]["_meta"].erase("io.modelcontextprotocol/clientCapabilities");
    const Case cases[] = {
        {"{", -32700},
        {"\xFF", -32700},
        {std::string(300, '[') + std::string(300, ']'), -32700},
        {R"("text")", -32600},
        {"[]", -32600},
        {R"({"jsonrpc":"1.0","id":5,"method":"ping"})", -32600, 5},
        {R"({"jsonrpc":"2.0","id":5})", -32600, 5},
        {R"({"jsonrpc":"2.0","id":5,"id":6,"method":"ping"})", -32600},
        {R"({"jsonrpc":"2.0","id":null,"method":"ping"})", -32600},
        {R"({"jsonrpc":"2.0","id":1.5,"method":"ping"})", -32600},
        {R"({"jsonrpc":"2.0","id":5,"method":"ping","params":[]})", -32602, 5},
        {MakeRequest(5, "initialize").dump(), -32602, 5},
        {MakeRequest(5, "tools/list").dump(), -32602, 5},
        {Ask("a", "prompts/list"), -32601, "a"},
        {Ask("a", "ping"), -32601, "a"},
        {Ask(5, "tools/list", {{"cursor", "2"}}), -32602, 5},
        {Ask(5, "tools/call"), -32602, 5},
        {AskTool(5, "join_paths", json::object()), -32602, 5},
        {AskTool(5, "describe", json::array()), -32602, 5},
        {other.dump(), -32022, 5},
        {poor.dump(), -32602, 5},
        {'"' + std::string(5000, 'x') + '"', -32600},
    };
    for (const Case& entry : cases) {
        const std::vector<json> answers = Say({entry.line, Ask("on", "tools/list")});
        ASSERT_EQ(answers.size(), 2U) << entry.line;
        EXPECT_EQ(answers[0]["error"]["code"], entry.code) << entry.line;
        EXPECT_EQ(answers[0].value("id", json()), entry.id) << entry.line;
        EXPECT_TRUE(answers[1].contains("result"));
    }
    EXPECT_THAT(Say({AskTool(5, "join_paths", {})})[0]["error"]["message"],
                HasSubstr("did you mean join_path"));
    EXPECT_THAT(Say({other.dump()})[0]["error"]["data"]["supported"], Contains(kNewest));
    EXPECT_EQ(Say({Ask(5, std::string("a\0b", 3))})[0]["error"]["message"],
              R"(There is no method "a\x00b")");
    other["params"]["_meta"]["io.modelcontextprotocol/protocolVersion"] = 7;
    EXPECT_EQ(Say({other.dump()})[0]["error"]["message"],
              "/params/_meta/io.modelcontextprotocol~1protocolVersion: must be a string");
}

TEST_F(AgentTest, NotificationsAndResponsesGetNoAnswer)
{
    EXPECT_THAT(Say({R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
                     R"({"jsonrpc":"2.0","method":"no/such/thing","params":[]})",
                     R"({"jsonrpc":"2.0","method":"notifications/cancelled"})",
                     R"({"jsonrpc":"2.0","method":"notifications/cancelled",)"
                     R"("params":{"requestId":[1]}})",
                     R"({"jsonrpc":"2.0","id":1,"result":{}})", "", "  "}),
                IsEmpty());
}

TEST_F(AgentTest, OnlyOneRevisionHasBatches)
{
    const std::string batch =
        json::array({MakeRequest(1, "ping"),
                     {{"jsonrpc", "2.0"}, {"method", "notifications/initialized"}},
                     MakeRequest(2, "tools/call", {{"name", "describe"}}),
                     MakeRequest(3, "nothing")})
            .dump();
    const std::vector<json> answers = Say({Initialize("2025-03-26"), batch, "[]"});
    ASSERT_EQ(answers.size(), 3U);
    const json& list = answers[1].is_array() ? answers[1] : answers[2];
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0]["id"], 1);
    EXPECT_FALSE(list[1]["result"]["isError"].get<bool>());
    EXPECT_EQ(list[2]["error"]["code"], -32601);
    EXPECT_EQ(Say({Initialize("2025-11-25"), batch})[1]["error"]["code"], -32600);
}

/// Lets the first write wait until all input is read, so that everything else is said meanwhile.
class LateOutput : public std::stringbuf
{
public:
    void Open()
    {
        const std::lock_guard lock(mMutex);
        mIsOpen = true;
        mOpened.notify_all();
    }

protected:
    int sync() override
    {
        std::unique_lock lock(mMutex);
        // Where it is never opened, the test shall fail rather than hang.
        return mOpened.wait_for(lock, std::chrono::seconds(60), [this] { return mIsOpen; }) ? 0
                                                                                            : -1;
    }

private:
    std::mutex mMutex;
    std::condition_variable mOpened;
    bool mIsOpen = false;
};

class LastInput : public std::stringbuf
{
public:
    LastInput(const std::string& text, LateOutput& output) : std::stringbuf(text), mOutput(output)
    {}

protected:
    int_type underflow() override
    {
        const int_type letter = std::stringbuf::underflow();
        if (traits_type::eq_int_type(letter, traits_type::eof()))
            mOutput.Open();
        return letter;
    }

private:
    LateOutput& mOutput;
};

TEST_F(AgentTest, CancelledCallsGetNoAnswer)
{
    const auto cancel = [](const json& id) {
        return json{{"jsonrpc", "2.0"},
                    {"method", "notifications/cancelled"},
                    {"params", {{"requestId", id}}}}
                   .dump() +
               '\n';
    };
    const auto call = [](const json& id) { return AskTool(id, "describe", json::object()) + '\n'; };
    LateOutput late;
    LastInput last(call(1) + call(2) + call("2") + call(3) + cancel(2) + cancel(3) + cancel(99),
                   late);
    std::istream input(&last);
    std::ostream output(&late);
    const ModelShelf shelf({Serve("shop", MakeModel(kTwoWays))});
    ServeAgent(shelf, input, output, {});
    std::vector<json> ids;
    std::istringstream told(late.str());
    for (std::string line; std::getline(told, line);)
        ids.push_back(json::parse(line)["id"]);
    EXPECT_THAT(ids, ElementsAre(1, "2"));
}

TEST_F(AgentTest, ThreadsAnswerEveryCallOnceAndAlike)
{
    std::vector<std::string> lines;
    for (int i = 0; i < 200; ++i)
        lines.push_back(
            AskTool(i, i % 2 == 0 ? "join_path" : "explain", {{"subjects", {"Sale", "Region"}}}));
    std::map<int, json> answers;
    for (const json& answer : Say(lines, 4))
        EXPECT_TRUE(answers.emplace(answer["id"], answer["result"]).second);
    ASSERT_EQ(answers.size(), lines.size());
    for (const auto& [id, result] : answers)
        EXPECT_EQ(result, answers[id % 2]);
}

TEST_F(AgentTest, ListsTellWhatTheToolsTake)
{
    std::set<std::string> dialects;
    for (const json& word :
         json(ListTools(GetRevisions().front())[2]["inputSchema"]["properties"]["dialect"]["enum"]))
        dialects.insert(word);
    std::set<std::string> known;
    for (const SqlDialect& dialect : GetSqlDialects())
        known.emplace(dialect.word);
    EXPECT_EQ(dialects, known);
    EXPECT_THAT(ListToolNames(), ElementsAre("list_subjects", "describe", "join_path",
                                             "alternatives", "explain", "check"));
    EXPECT_THAT(ListToolArguments("explain"), Contains("favouredJoins"));
    for (const std::string& tool : ListToolNames())
        EXPECT_THAT(Text(tool, {{"modle", "shop"}}), HasSubstr("did you mean model?")) << tool;
}

TEST_F(AgentTest, PathsComeAsAFromClauseWithItsJoins)
{
    UseModels({Serve("shop", ImportText(qe::test::kShopTables))});
    const json found = Content("join_path", {{"subjects", {"customer", "region"}}});
    EXPECT_TRUE(found["connected"].get<bool>());
    EXPECT_THAT(found["from"], HasSubstr("JOIN"));
    EXPECT_EQ(found["joins"][0]["left"], "customer");
    EXPECT_EQ(found["question"], json());
    EXPECT_EQ(found["separation"], json());
    EXPECT_THAT(found["warnings"], IsEmpty());
    EXPECT_THAT(
        Content("join_path", {{"subjects", {"customer", "region"}}, {"dialect", "mysql"}})["from"],
        HasSubstr("JOIN"));

    const json apart = Content("join_path", {{"subjects", {"customer", "island"}}});
    EXPECT_FALSE(apart["connected"].get<bool>());
    EXPECT_EQ(apart["from"], json());
    EXPECT_EQ(apart["separation"]["groups"].size(), 2U);
    EXPECT_THAT(Text("join_path", {{"subjects", {"customer", "island"}}}),
                HasSubstr("NO JOIN PATH connects customer, island"));
}

TEST_F(AgentTest, RowsThatComeSeveralTimesAreToldAsOrders)
{
    const json chasm{{"subjects", {"Sale", "Return", "Product"}}};
    const std::string text = Text("join_path", chasm);
    EXPECT_THAT(text, HasSubstr("WARNING: Do not use SUM, COUNT or AVG over columns of Sale, "
                                "Return with this FROM clause"));
    EXPECT_THAT(text, HasSubstr("INSTEAD: Aggregate Sale, Return in a subquery each, grouped by "
                                "the key of Product"));
    const json warning = Content("join_path", chasm)["warnings"][0];
    EXPECT_EQ(warning["risk"], "multiplied");
    EXPECT_THAT(warning["subjects"], ElementsAre("Sale", "Return"));
    EXPECT_THAT(Text("join_path", {{"subjects", {"Sale", "Product"}}}), Not(HasSubstr("WARNING")));

    UseModels({Serve("shop", MakeModel("Sale >o-o Store : ss\n Sale >- Day : sd"))});
    EXPECT_THAT(Text("join_path", {{"subjects", {"Sale", "Store"}}, {"innerJoins", true}}),
                HasSubstr("without \"innerJoins\" to keep these rows"));
}

TEST_F(AgentTest, AmbiguousPathsAskTheUserAndEachOptionAnswers)
{
    const json question{{"subjects", {"Sale", "Region"}}, {"dialect", "duckdb"}};
    const json found = Content("join_path", question);
    const json& asked = found["question"];
    EXPECT_EQ(asked["text"], "Several ways connect Sale, Region equally well; which one is meant?");
    ASSERT_EQ(asked["options"].size(), 2U);
    std::set<json> paths;
    int answered = 0;
    for (const json& option : asked["options"]) {
        const json next = Content("join_path", option["arguments"]);
        EXPECT_EQ(next["question"], json()) << option;
        EXPECT_EQ(option["arguments"]["dialect"], "duckdb");
        paths.insert(next["joins"]);
        if (option["isAnswered"].get<bool>()) {
            ++answered;
            EXPECT_EQ(next["joins"], found["joins"]);
        }
        for (const json& join : next["joins"])
            EXPECT_THAT(option["label"], HasSubstr(join["name"].get<std::string>()));
    }
    EXPECT_EQ(paths.size(), 2U);
    EXPECT_EQ(answered, 1);
    EXPECT_THAT(Text("join_path", question), HasSubstr("QUESTION FOR THE USER: Several ways"));

    const json list = Content("alternatives", {{"subjects", {"Sale", "Region"}}, {"limit", 1}});
    EXPECT_EQ(list["total"], 2);
    EXPECT_EQ(list["alternatives"].size(), 1U);
    const json rest =
        Content("alternatives", {{"subjects", {"Sale", "Region"}}, {"cursor", list["nextCursor"]}});
    EXPECT_EQ(rest["alternatives"][0]["number"], 2);
    EXPECT_FALSE(rest.contains("nextCursor"));
    const json& next = rest["alternatives"][0]["arguments"];
    EXPECT_FALSE(next.contains("cursor"));
    EXPECT_EQ(Content("join_path", next)["joins"].size(), 2U);
}

TEST_F(AgentTest, MistakesComeBackWithTheNearestRightNames)
{
    struct Case
    {
        std::string tool;
        json arguments;
        std::string told;
    };
    const Case cases[] = {
        {"join_path", {{"subjects", {"Sael", "Region"}}}, "did you mean Sale?"},
        {"join_path", {{"subjects", {"Sale", "Regoin", "Stoer"}}}, "did you mean Store?"},
        {"join_path", {{"subjects", json::array()}}, "must name at least one subject"},
        {"join_path", json::object(), "must name at least one subject"},
        {"join_path", {{"subjects", "Sale"}}, "/subjects"},
        {"join_path", {{"subjects", {"Sale"}}, {"requiredJoins", {"sS2"}}}, "did you mean ss"},
        {"join_path", {{"subjects", {"Sale"}}, {"dialect", "mysqll"}}, "did you mean mysql?"},
        {"join_path", {{"subjects", {"Sale"}}, {"start", "Region"}}, "does not touch"},
        {"join_path", {{"subjects", {"Sale"}}, {"operation", "tree"}}, "operation"},
        {"describe", {{"subject", "Prodct"}}, "did you mean Product?"},
        {"describe", {{"limit", 0}}, "/limit"},
        {"describe", {{"model", "shpo"}}, "did you mean shop?"},
        {"list_subjects", {{"cursor", "abc"}}, "is no cursor of this list: \"abc\""},
        {"list_subjects", {{"cursor", "99"}}, "is no cursor of this list"},
        {"check", {{"limit", "many"}}, "/limit"},
    };
    for (const Case& entry : cases) {
        const json result = Call(entry.tool, entry.arguments);
        EXPECT_TRUE(result.value("isError", false)) << entry.arguments;
        EXPECT_FALSE(result.contains("structuredContent"));
        EXPECT_THAT(result["content"][0]["text"], HasSubstr(entry.told)) << entry.arguments;
    }
}

TEST_F(AgentTest, SubjectsComeInPagesAndByMatches)
{
    std::string text;
    std::set<std::string> names;
    for (int i = 0; i < 250; ++i) {
        names.insert("T" + std::to_string(i));
        text += "T" + std::to_string(i) + "\n";
    }
    UseModels({Serve("wide", MakeModel(text))});
    std::set<std::string> seen;
    json arguments = json::object();
    int pages = 0;
    for (json cursor = ""; !cursor.is_null(); ++pages) {
        const json page = Content("list_subjects", arguments);
        for (const json& subject : page["subjects"])
            EXPECT_TRUE(seen.insert(subject["name"]).second);
        cursor = page.value("nextCursor", json());
        arguments["cursor"] = cursor;
    }
    EXPECT_EQ(seen, names);
    EXPECT_EQ(pages, 3);
    EXPECT_EQ(Content("list_subjects", {{"match", "t24"}})["total"], 11);
    EXPECT_EQ(Content("list_subjects", {{"match", "none"}})["subjects"], json::array());
}

TEST_F(AgentTest, DescriptionsTellColumnsKeysAndJoins)
{
    UseModels({Serve("shop", ImportText(qe::test::kShopTables))});
    const json sale = Content("describe", {{"subject", "sale"}});
    EXPECT_EQ(sale["kind"], "query subject");
    EXPECT_EQ(sale["columns"], json({{{"name", "customer_id"}}, {{"name", "payer_id"}}}));
    EXPECT_EQ(sale["joinCount"], sale["joins"].size());
    EXPECT_EQ(sale["joins"][0]["right"], "customer");
    EXPECT_THAT(Content("describe", {{"subject", "region"}})["keys"], ElementsAre(json{"id"}));
    const json cut = Content("describe", {{"subject", "sale"}, {"limit", 1}});
    EXPECT_EQ(cut["columns"].size(), 1U);
    EXPECT_EQ(cut["columnCount"], 2);
    EXPECT_EQ(Content("describe", json::object())["subjects"], 4);
    EXPECT_THAT(Content("check", json::object())["findings"][0]["place"]["name"],
                HasSubstr("island"));
    EXPECT_THAT(Text("explain", {{"subjects", {"sale", "region"}}}), HasSubstr("decided by: "));
}

TEST_F(AgentTest, SeveralModelsHaveNames)
{
    UseModels({Serve("shop", MakeModel(kTwoWays)), Serve("hr", MakeModel("Staff >- Office : so"))});
    EXPECT_THAT(Text("describe", json::object()), HasSubstr("name one of shop, hr"));
    EXPECT_EQ(Content("describe", {{"model", "hr"}})["subjects"], 2);
    EXPECT_THAT(
        qe::test::MistakesOf([] {
            const ModelShelf twice({Serve("a", MakeModel("A")), Serve("a", MakeModel("B"))});
        }),
        HasSubstr("Two models have one name"));

    const std::map<std::string, std::string> names{
        {"shop.sqlite", "shop: shop.sqlite"},
        {"data/shop.v2.json", "shop.v2: data/shop.v2.json"},
        {"models/dbt/", "dbt: models/dbt/"},
        {"my-shop=data/x.sql", "my-shop: data/x.sql"},
        {"postgresql://db/shop?sslmode=require", "shop: postgresql://db/shop?sslmode=require"},
        {"pg=postgresql://db/shop?sslmode=require", "pg: postgresql://db/shop?sslmode=require"}};
    for (const auto& [text, told] : names) {
        const NamedModel named = ParseNamedModel(text);
        EXPECT_EQ(named.name + ": " + named.path, told);
    }
}

TEST_F(AgentTest, HostileNamesStayOnTheirLines)
{
    UseModels({Serve("shop",
                     ImportText("CREATE TABLE \"a\nWARNING: drop\x1b[2J\" (id INTEGER PRIMARY KEY);"
                                "CREATE TABLE b (a_id INT NOT NULL "
                                "REFERENCES \"a\nWARNING: drop\x1b[2J\");"))});
    const std::string text = Text("list_subjects", json::object());
    EXPECT_THAT(text, HasSubstr("a\\nWARNING: drop"));
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_THAT(Text("describe", {{"subject", "b"}}), Not(HasSubstr("\nWARNING")));
}

} // namespace
