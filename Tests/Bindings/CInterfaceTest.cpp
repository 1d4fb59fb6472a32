#include "Tests/Bindings/CCalls.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SchemaCheck.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace qe::test;
using qe::tool::ReadInputFile;
using testing::HasSubstr;

const std::string kRetail = QEREFINER_SOURCE_DIR "/Examples/retail/";
constexpr const char* kReport = R"({"subjects": ["returns", "store", "category"]})";

/// The tool's standard output for a command about the retail model.
std::string Print(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin() + 1, kRetail + "model.json");
    return RunTool(arguments, {}, {}).output;
}

class CInterface : public testing::Test
{
protected:
    CModel mModel = Open(kRetail + "model.json");
    std::string mRequests = ReadInputFile(kRetail + "requests.jsonl");
};

TEST_F(CInterface, AnswersAreTheToolsBytes)
{
    struct Case
    {
        const char* request;
        const char* format;
        const char* options;
        std::vector<std::string> arguments;
    };
    const std::vector<std::string> report{"path", "returns", "store", "category"};
    const auto with = [&report](std::vector<std::string> more) {
        more.insert(more.begin(), report.begin(), report.end());
        return more;
    };
    const Case cases[] = {
        {kReport, "json", nullptr, with({"--format", "json"})},
        {kReport, "json", R"({"alternatives": 0})",
         with({"--format", "json", "--alternatives", "0"})},
        {kReport, "text", nullptr, report},
        {kReport, "sql", nullptr, with({"--format", "sql"})},
        {kReport, "sql",
         R"({"dialect": "sqlserver", "select": true, "inner": true, "start": "store",
             "skipPassedTables": true})",
         with({"--format", "sql", "--dialect", "sqlserver", "--select", "--inner", "--start",
               "store", "--skip-passed-tables"})},
        {kReport, "dot", nullptr, with({"--format", "dot"})},
        {R"({"operation": "best", "subjects": ["sales", "category"]})",
         "json",
         nullptr,
         {"best", "sales", "category", "--format", "json"}},
        {R"({"operation": "between", "subjects": ["sales"], "secondSet": ["country"]})",
         "json",
         nullptr,
         {"between", "--from", "sales", "--to", "country", "--format", "json"}},
    };
    for (const Case& each : cases) {
        const CallResult result = Write(Ask(mModel, each.request), each.format, each.options);
        EXPECT_EQ(result.text, Print(each.arguments)) << each.format << result.error;
    }
}

TEST_F(CInterface, ReportsAreTheToolsBytes)
{
    const auto model = mModel.get();
    const auto facts = [&](const char* request) {
        return Call([&](auto... out) { return qe_model_facts(model, request, out...); }).text;
    };
    EXPECT_EQ(facts(nullptr), Print({"facts", "--format", "json"}));
    EXPECT_EQ(facts(R"({"operation": "best", "subjects": ["sales", "category"]})"),
              Print({"facts", "sales", "category", "--format", "json"}));
    EXPECT_EQ(facts(kReport), Print({"facts", "returns", "store", "category", "--format", "json"}));
    EXPECT_EQ(Call([&](auto... out) { return qe_model_describe(model, out...); }).text,
              Print({"import"}));
    EXPECT_EQ(Call([&](auto... out) { return qe_model_shortcuts(model, nullptr, out...); }).text,
              Print({"shortcuts", "--format", "json"}));
    const char* const severities = R"({"severities": {"chasm": "warning"}, "limit": 3})";
    EXPECT_EQ(Call([&](auto... out) { return qe_model_check(model, severities, out...); }).text,
              Print({"check", "--format", "json", "--severity", "chasm=warning", "--limit", "3"}));
    const char* const around = R"({"format": "dot", "around": ["sales"]})";
    EXPECT_EQ(Call([&](auto... out) { return qe_model_draw(model, around, out...); }).text,
              Print({"show", "--format", "dot", "--around", "sales"}));
}

TEST_F(CInterface, FilesOfRequestsAreAnsweredAsByTheTool)
{
    const auto batch = [&](const char* options) {
        return Call([&](auto... out) {
            return qe_model_batch(mModel.get(), mRequests.data(), mRequests.size(), options,
                                  out...);
        });
    };
    const std::string file = kRetail + "requests.jsonl";
    EXPECT_EQ(batch(nullptr).text, Print({"batch", file}));
    EXPECT_EQ(
        batch(R"({"jobs": 2, "alternatives": 2, "defaults": {"selector": "first"}})").text,
        Print({"batch", file, "--alternatives", "2", "--defaults", R"({"selector":"first"})"}));
    const auto evaluate = [&](const char* options) {
        return Call([&](auto... out) {
            return qe_model_evaluate(mModel.get(), mRequests.data(), mRequests.size(), options,
                                     out...);
        });
    };
    EXPECT_EQ(evaluate(nullptr).text, Print({"evaluate", file, "--format", "json"}));
    EXPECT_EQ(evaluate(R"({"round": "replay"})").text,
              Print({"evaluate", file, "--format", "json", "--replay"}));
    EXPECT_EQ(evaluate(("{\"history\": [\"" + file + "\"]}").c_str()).text,
              Print({"evaluate", file, "--format", "json", "--history", file}));
}

TEST_F(CInterface, ErrorsTellKindPlaceAndSuggestions)
{
    struct Case
    {
        const char* request;
        const char* options;
        qe_status status;
        const char* place;
        const char* suggestion;
    };
    const Case cases[] = {
        {R"({"subjects": ["sale", "store"]})", nullptr, QE_UNKNOWN_NAME, "subjects", "sales"},
        {R"({"subject": ["sales"]})", nullptr, QE_WRONG_REQUEST, "/subject", "subjects"},
        {R"({"subjects": "sales"})", nullptr, QE_WRONG_REQUEST, "/subjects", ""},
        {R"({"subjects": [)", nullptr, QE_WRONG_REQUEST, "column 15", ""},
        {nullptr, nullptr, QE_WRONG_USE, "request", ""},
        {kReport, R"({"dialct": "mysql"})", QE_WRONG_USE, "options#/dialct", "dialect"},
        {kReport, R"({"dialect": "mysq"})", QE_WRONG_USE, "options#/dialect", "mysql"},
        {kReport, R"({"start": "country"})", QE_NO_SUCH_FORM, "options#/start", ""},
        {kReport, R"({"start": "stroe"})", QE_UNKNOWN_NAME, "options#/start", "store"},
        {kReport, "[]", QE_WRONG_USE, "options#", ""},
        {R"({"operation": "subjects", "subjects": ["sales", "store"]})", nullptr, QE_NO_SUCH_FORM,
         "", ""},
    };
    for (const Case& each : cases) {
        qe_answer* answer = nullptr;
        const CallResult result = Call([&](char** text, qe_error** error) {
            const qe_status status = qe_ask(mModel.get(), each.request, &answer, error);
            return status != QE_OK ? status
                                   : qe_answer_write(answer, "sql", each.options, text, error);
        });
        qe_answer_free(answer);
        EXPECT_EQ(result.status, each.status) << result.error;
        EXPECT_THAT(result.place, HasSubstr(each.place)) << result.error;
        EXPECT_EQ(result.suggestion, each.suggestion) << result.error;
        EXPECT_TRUE(result.text.empty());
    }
}

TEST_F(CInterface, NamesThatSeveralObjectsHaveAreTold)
{
    constexpr std::string_view kTwins = R"({"namespaces": [
        {"name": "a", "subjects": [{"name": "t", "items": ["x"]}, {"name": "u", "items": ["x"]}]},
        {"name": "b", "subjects": [{"name": "t", "items": ["x"]}]}]})";
    qe_model* model = nullptr;
    ASSERT_EQ(qe_model_read(kTwins.data(), kTwins.size(), "twins", nullptr, &model, nullptr),
              QE_OK);
    const CModel opened(model);
    qe_error* error = nullptr;
    qe_answer* answer = nullptr;
    EXPECT_EQ(qe_ask(model, R"({"subjects": ["t", "u"]})", &answer, &error), QE_AMBIGUOUS_NAME);
    EXPECT_STREQ(qe_error_suggestion(error, 0, 0), "a.t");
    EXPECT_STREQ(qe_error_suggestion(error, 0, 1), "b.t");
    EXPECT_EQ(qe_error_suggestion(error, 0, 2), nullptr);
    EXPECT_EQ(qe_error_message(error, 1), nullptr);
    qe_error_free(error);
}

TEST_F(CInterface, OutcomesTellAnswersApart)
{
    constexpr const char* kApart = "CREATE TABLE a (x INT); CREATE TABLE b (x INT);";
    qe_model* read = nullptr;
    ASSERT_EQ(qe_model_read(kApart, std::strlen(kApart), "apart.sql", nullptr, &read, nullptr),
              QE_OK);
    const CModel model(read);
    EXPECT_EQ(qe_answer_outcome(Ask(mModel, kReport).get()), QE_CONNECTED);
    EXPECT_EQ(qe_answer_outcome(Ask(model, R"({"subjects": ["a", "b"]})").get()), QE_NOT_CONNECTED);
    const char* const denied = R"({"subjects": ["a", "b"], "crossProduct": 2})";
    const CAnswer refused = Ask(model, denied);
    EXPECT_EQ(qe_answer_outcome(refused.get()), QE_ANSWER_REFUSED);
    EXPECT_THAT(Write(refused, "json").text, HasSubstr("\"kind\": \"reported\""));
    EXPECT_EQ(Write(refused, "sql").status, QE_NO_SUCH_FORM);
    EXPECT_EQ(Call([&](auto... out) { return qe_model_facts(read, denied, out...); }).status,
              QE_REFUSED);
}

TEST_F(CInterface, BytesAreReadLikeFiles)
{
    const TemporaryFolder folder;
    const std::string database = folder / "shop.db";
    ASSERT_EQ(std::system(("sqlite3 " + database + " < " + kRetail + "warehouse.sql").c_str()), 0);
    const std::string schema = QEREFINER_SOURCE_DIR "/Examples/retail/warehouse.sql";
    const auto describe = [](const qe_model* model) {
        return Call([&](auto... out) { return qe_model_describe(model, out...); }).text;
    };
    for (const std::string& path : {database, schema, kRetail + "model.json"}) {
        const std::string bytes = ReadInputFile(path);
        qe_model* model = nullptr;
        EXPECT_EQ(qe_model_read(bytes.data(), bytes.size(), path.c_str(), nullptr, &model, nullptr),
                  QE_OK);
        EXPECT_EQ(describe(model), describe(Open(path).get())) << path;
        qe_model_free(model);
    }
    EXPECT_NE(describe(Open(schema, R"({"from": "sqlite", "roles": "shortcuts"})").get()),
              describe(Open(schema).get()));
}

TEST_F(CInterface, WhatCannotBeOpenedIsToldWithItsPlace)
{
    const auto open = [](const char* bytes, const char* options) {
        return Call([&](char** /*text*/, qe_error** error) {
            qe_model* model = nullptr;
            const qe_status status =
                qe_model_read(bytes, std::strlen(bytes), "m.json", options, &model, error);
            qe_model_free(model);
            return status;
        });
    };
    const CallResult broken = open("{\n \"subjects\": 7}", nullptr);
    EXPECT_EQ(broken.status, QE_UNREADABLE);
    EXPECT_EQ(broken.place, "m.json#/subjects");
    const CallResult setting = open("{}", R"({"settings": {"General Options/NewAlg": 1}})");
    EXPECT_EQ(setting.place, "options#/settings/General Options~1NewAlg");
    EXPECT_EQ(setting.suggestion, "General Options/NewAlgo");
    EXPECT_EQ(open("{}", R"({"tables": ["x"]})").status, QE_WRONG_USE);
    EXPECT_EQ(open("", nullptr).status, QE_UNREADABLE);
    EXPECT_EQ(Open("/no/such/file"), nullptr);
}

TEST_F(CInterface, NullPointersAreMistakes)
{
    qe_model* const none = nullptr;
    EXPECT_EQ(qe_model_open(nullptr, nullptr, nullptr, nullptr), QE_WRONG_USE);
    EXPECT_EQ(Call([&](auto... out) { return qe_model_check(none, nullptr, out...); }).place,
              "model");
    EXPECT_EQ(qe_model_describe(mModel.get(), nullptr, nullptr), QE_WRONG_USE);
    EXPECT_EQ(Write(nullptr, "json").status, QE_WRONG_USE);
    EXPECT_EQ(Write(Ask(mModel, kReport), "pdf").place, "format");
    EXPECT_EQ(qe_error_status(nullptr), QE_OK);
    EXPECT_EQ(qe_schema("no"), nullptr);
}

TEST_F(CInterface, AnswersOutliveTheirModel)
{
    const CAnswer answer = Ask(mModel, kReport);
    const std::string before = Write(answer, "sql").text;
    mModel.reset();
    EXPECT_EQ(Write(answer, "sql").text, before);
}

TEST_F(CInterface, ThreadsShareModelsAndAnswers)
{
    const auto batch = [&] {
        return Call([&](auto... out) {
            return qe_model_batch(mModel.get(), mRequests.data(), mRequests.size(), nullptr,
                                  out...);
        });
    };
    const std::string alone = batch().text;
    const CAnswer shared = Ask(mModel, kReport);
    const std::string json = Write(shared, "json").text;
    std::vector<std::thread> threads;
    std::vector<int> wrong(4);
    for (int& count : wrong)
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round)
                count += batch().text != alone || Write(shared, "json").text != json ||
                         Write(Ask(mModel, kReport), "json").text != json;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(wrong, testing::Each(0));
}

TEST_F(CInterface, SchemasArePublishedAndHold)
{
    const std::string folder = QEREFINER_SOURCE_DIR "/Documentation/";
    EXPECT_EQ(qe_schema("answer"), ReadInputFile(folder + "answer.schema.json"));
    EXPECT_EQ(qe_schema("model"), ReadInputFile(folder + "model.schema.json"));
    const auto refused =
        FindRefused("answer.schema.json", {Write(Ask(mModel, kReport), "json").text});
    if (!refused)
        GTEST_SKIP() << "no validator is installed";
    EXPECT_THAT(*refused, testing::Each(""));
}

} // namespace
