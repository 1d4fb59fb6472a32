#include "Toolkit/Batch/Batch.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/OrderedWork.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>

namespace {

using namespace qe::tool;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> ToLines(const std::string& text)
{
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    return lines;
}

TEST(LineReader, KeepsNumbersAndBoundsLines)
{
    std::istringstream input("one\n\n \r\nlonger\n1234\r\nlast");
    LineReader reader(input, 5);
    std::vector<std::string> seen;
    for (RequestLine line; reader.Next(line);)
        seen.push_back(std::to_string(line.number) + (line.isTooLong ? "!" : ":") + line.text +
                       "@" + std::to_string(line.bytes));
    EXPECT_THAT(seen, ElementsAre("1:one@4", "4!@15", "5:1234\r@21", "6:last@25"));
}

TEST(LatencyHistogram, PercentilesAreAlmostThoseOfTheSortedTimes)
{
    EXPECT_EQ(LatencyHistogram().GetPercentile(50), 0ns);
    std::mt19937_64 random(7);
    for (const std::size_t count : {1U, 2U, 99U, 1000U}) {
        LatencyHistogram histogram;
        std::vector<std::int64_t> times(count);
        for (std::int64_t& time : times) {
            time = static_cast<std::int64_t>(random() >> (1 + random() % 63));
            histogram.Add(std::chrono::nanoseconds(time));
        }
        std::sort(times.begin(), times.end());
        for (const unsigned percent : {1U, 50U, 99U, 100U}) {
            const std::int64_t exact = times[(count * percent + 99) / 100 - 1];
            const std::int64_t found = histogram.GetPercentile(percent).count();
            EXPECT_LE(found, exact);
            EXPECT_GE(found, exact - exact / 32) << count << " times, " << percent << " %";
        }
    }
}

TEST(OrderedWork, KeepsOrderAndWindowHoweverSlowOneLineIs)
{
    constexpr std::size_t kWindow = 8;
    std::atomic<std::size_t> begun = 0;
    std::size_t handedOver = 0;
    std::size_t furthest = 0;
    std::vector<std::string> results;
    OrderedWork work(
        4, kWindow,
        [&](const RequestLine& line) {
            ++begun;
            if (line.number % 10 == 1)
                std::this_thread::sleep_for(5ms);
            return WorkResult{std::to_string(line.number)};
        },
        [&](const WorkResult& result) {
            furthest = std::max(furthest, begun.load() - handedOver);
            ++handedOver;
            results.push_back(result.text);
        });
    std::vector<std::string> expected;
    for (std::size_t number = 1; number <= 60; ++number) {
        work.Add({number});
        expected.push_back(std::to_string(number));
    }
    work.Finish();
    EXPECT_EQ(results, expected);
    EXPECT_LE(furthest, kWindow);
    EXPECT_GT(furthest, 1U) << "nothing ran ahead of the slow lines";
}

TEST(OrderedWork, FailuresReachTheCaller)
{
    for (const bool inSink : {false, true}) {
        OrderedWork work(
            2, 4,
            [&](const RequestLine& line) -> WorkResult {
                if (!inSink && line.number == 3)
                    throw std::runtime_error("work");
                return {};
            },
            [&](const WorkResult&) {
                if (inSink)
                    throw std::runtime_error("sink");
            });
        EXPECT_THROW(
            {
                for (std::size_t number = 1; number <= 50; ++number)
                    work.Add({number});
                work.Finish();
            },
            std::runtime_error);
    }
}

TEST(QuestionReader, ReadsEveryKey)
{
    const Question question = ReadQuestion(ParseRequest(R"({"id": 1, "operation": "best between",
        "subjects": ["a"], "secondSet": ["b"], "favouredJoins": ["c"], "requiredJoins": ["d"],
        "avoidedJoins": ["e"], "favouredSubjects": ["f"], "onlySubjects": ["g"],
        "withoutSubjects": ["h"], "onlyJoins": ["i"], "withoutJoins": ["j"],
        "useFactTableCount": false, "useStraightestPath": true, "selector": "main-object",
        "checkOptional": true, "subjectsAreCandidates": false, "crossProduct": 2, "grouping": -1,
        "commandType": "describe", "db": "", "given": "", "joins": [], "case": "", "ties": 1})"),
                                           {});
    EXPECT_EQ(question.operation, EOperation::BestPathsBetween);
    std::string lists;
    const Restriction& restriction = question.restriction;
    for (const auto* list :
         {&question.subjects, &question.secondSet, &question.favouredJoins, &question.requiredJoins,
          &question.avoidedJoins, &question.favouredSubjects, &restriction.onlySubjects,
          &restriction.withoutSubjects, &restriction.onlyJoins, &restriction.withoutJoins})
        lists += list->at(0);
    EXPECT_EQ(lists, "abcdefghij");
    EXPECT_FALSE(question.ranking.useFactTableCount);
    EXPECT_TRUE(question.ranking.useStraightestPath);
    EXPECT_EQ(question.selector.kind, ESelector::MainObject);
    EXPECT_TRUE(question.selector.checkOptional);
    EXPECT_FALSE(question.selector.subjectsAreCandidates);
    EXPECT_EQ(question.governors.crossProduct, 2);
    EXPECT_EQ(question.governors.grouping, -1);
    EXPECT_EQ(question.commandType, AQE_RequestContext::CommandTypeDescribe);
}

TEST(QuestionReader, ReportsEveryMistake)
{
    const std::pair<const char*, const char*> mistakes[] = {
        {"{", "column 2: not valid JSON"},
        {"\"\xff\"", "column 2: not valid JSON"},
        {"[]", "must be an object, not a list"},
        {"{}", "/subjects: must name at least one subject"},
        {R"({"subjects": []})", "/subjects: must name at least one subject"},
        {R"({"operation": "between", "subjects": ["a"]})",
         "/secondSet: must name at least one subject"},
        {R"({"subjects": ["a", 1]})", "/subjects/1: must be a string, not a number"},
        {R"({"subjects": ["a"], "subjects": ["b"]})",
         "/subjects: key is given twice: \"subjects\""},
        {R"({"subjects": "a", "Subjects": [], "crossProduct": 1e3, "grouping": 99999999999})",
         "/subjects: must be a list, not a string\n"
         "/crossProduct: must be a whole number, not a number with a fraction\n"
         "/grouping: must lie between -1000000 and 1000000: 99999999999\n"
         "/Subjects: key is unknown: \"Subjects\" (did you mean subjects?)"},
        {R"({"operation": "tre", "selector": 1, "checkOptional": 0, "commandType": "Query"})",
         "/operation: unknown value: \"tre\" (did you mean tree?)\n"
         "/selector: must be a string, not a number\n"
         "/checkOptional: must be true or false, not a number\n"
         "/commandType: unknown value: \"Query\" (did you mean query?)"},
    };
    for (const auto& [text, message] : mistakes)
        EXPECT_EQ(qe::test::MistakesOf(
                      [&text = text] { static_cast<void>(ReadQuestion(ParseRequest(text), {})); }),
                  message)
            << text;
}

/// A few requests of every kind, in one order over and over.
std::string MakeRequests(std::size_t count)
{
    const char* const kinds[] = {
        R"({"id": "ok", "subjects": ["sale", "region"]})",
        R"({"id": "wrong name", "subjects": ["sales", "region"]})",
        R"({"id": )",
        R"({"id": "apart", "subjects": ["sale", "island"]})",
        R"({"id": "denied", "subjects": ["sale", "island"], "crossProduct": 2})",
    };
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += std::string(kinds[i % std::size(kinds)]) + "\n";
    return text;
}

struct BatchRun
{
    std::vector<std::string> lines;
    BatchSummary summary;
};

std::string ToLine(const BatchEntry& entry)
{
    return ToJsonLine(ToJson(entry, ListLimit(0)));
}

BatchRun RunShop(const std::string& requests, const BatchOptions& options)
{
    static const ToolModel shop = qe::test::ImportText(qe::test::kShopTables);
    std::istringstream input(requests);
    std::ostringstream output;
    const BatchSummary summary = RunBatch(shop, input, {output, ToLine}, options);
    return {ToLines(output.str()), summary};
}

TEST(Batch, AnswersInOrderWhateverTheThreads)
{
    BatchOptions options;
    const BatchRun one = RunShop(MakeRequests(500), options);
    ASSERT_EQ(one.lines.size(), 500U);
    EXPECT_THAT(one.lines[0], HasSubstr(R"("connected":true)"));
    EXPECT_THAT(one.lines[1], StartsWith(R"({"line":2,"id":"wrong name","error":{)"));
    EXPECT_THAT(one.lines[1], HasSubstr(R"("nearestNames":["sale"])"));
    EXPECT_THAT(one.lines[2], StartsWith(R"({"line":3,"id":null,"error":{)"));
    EXPECT_THAT(one.lines[3], HasSubstr(R"("connected":false)"));
    EXPECT_THAT(one.lines[4], HasSubstr(R"("error":{"kind":"reported")"));
    EXPECT_EQ(one.summary.requests, 500U);
    EXPECT_EQ(one.summary.failures, 300U);
    EXPECT_EQ(one.summary.notConnected, 100U);
    EXPECT_THAT(ToText(one.summary), StartsWith("requests: 500, failures: 300, not connected: 100, "
                                                "multiplied: 100, ambiguous: 100, median: "));
    options.threads = 4;
    EXPECT_EQ(RunShop(MakeRequests(500), options).lines, one.lines);
}

TEST(Batch, AnswersEachRequestAsIfItWereTheOnlyOne)
{
    const char* const members[] = {
        "",
        R"-(, "favouredJoins": ["sale-customer (payer_id)"])-",
        R"-(, "requiredJoins": ["sale-customer (payer_id)"])-",
        R"(, "favouredSubjects": ["region"])",
        R"-(, "withoutJoins": ["sale-customer (customer_id)"])-",
        R"(, "onlySubjects": ["customer"])",
        R"(, "operation": "best", "avoidedJoins": ["customer-region"])",
        R"(, "operation": "best")",
        R"(, "operation": "tree")",
        R"(, "selector": "main-object")",
        R"(, "useStraightestPath": true)",
        R"(, "crossProduct": 1)",
        R"(, "crossProduct": 2)",
        R"(, "crossProduct": 1, "commandType": "describe")",
        R"(, "grouping": 1)",
        R"(, "subjects": [])",
    };
    std::vector<std::string> requests;
    for (const char* const subjects : {R"("sale", "region")", R"("sale", "island")"})
        for (const char* const member : members)
            requests.push_back(R"({"subjects": [)" + std::string(subjects) + "]" + member + "}");
    std::string all;
    std::vector<std::string> wanted;
    for (const std::string& before : requests) {
        for (const std::string& request : requests) {
            all += before + "\n" + request + "\n";
            for (const std::string& line : {before, request})
                wanted.push_back(line);
        }
    }
    const auto answerOf = [](const std::string& line) { return line.substr(line.find(',')); };
    std::map<std::string, std::string> alone;
    for (const std::string& request : requests)
        alone[request] = answerOf(RunShop(request, {}).lines.front());
    const BatchRun together = RunShop(all, {});
    ASSERT_EQ(together.lines.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i)
        ASSERT_EQ(answerOf(together.lines[i]), alone[wanted[i]]) << wanted[i] << " in line " << i;
}

TEST(Batch, PassesOverLinesThatAreTooLong)
{
    BatchOptions options;
    options.longestLine = 60;
    const std::string good = R"({"subjects": ["sale", "region"]})";
    const auto lines = RunShop(good + "\n" + std::string(1000, '[') + "\n" + good, options).lines;
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[1], HasSubstr("the line is too long"));
    EXPECT_THAT(lines[2], HasSubstr(R"("connected":true)"));
}

TEST(Batch, EndsWithWhatWasDoneWhenStopped)
{
    std::atomic<bool> stop = false;
    BatchOptions options;
    options.threads = 2;
    options.stop = &stop;
    options.observer = [&stop](const BatchSummary& soFar) { stop = soFar.requests >= 3; };
    const BatchRun stopped = RunShop(MakeRequests(5000), options);
    EXPECT_TRUE(stopped.summary.wasInterrupted);
    EXPECT_THAT(ToText(stopped.summary), HasSubstr("(interrupted)"));
    EXPECT_EQ(stopped.summary.requests, stopped.lines.size());
    ASSERT_GE(stopped.lines.size(), 3U);
    ASSERT_LT(stopped.lines.size(), 5000U);
    const BatchRun whole = RunShop(MakeRequests(stopped.lines.size()), {});
    EXPECT_EQ(stopped.lines, whole.lines);
}

TEST(Batch, ThrowsWhenTheOutputCannotBeWritten)
{
    std::istringstream input(MakeRequests(200));
    std::ostringstream output;
    output.setstate(std::ios::badbit);
    const ToolModel shop = qe::test::ImportText(qe::test::kShopTables);
    EXPECT_THROW(static_cast<void>(RunBatch(shop, input, {output, ToLine}, {})),
                 std::runtime_error);
}

TEST(BatchCommand, ShowsFailuresByItsExitCode)
{
    const qe::test::TemporaryFolder folder;
    const std::string model = folder.Write("shop.sql", qe::test::kShopTables);
    const std::string requests = folder.Write("requests.jsonl", MakeRequests(2));
    using qe::test::RunTool;
    const auto answered =
        RunTool({"batch", model, "-", "--jobs", "2"}, R"({"subjects": ["sale", "region"]})");
    EXPECT_EQ(answered.code, EExitCode::Done);
    EXPECT_THAT(answered.error, StartsWith("requests: 1, failures: 0"));
    Terminal terminal;
    terminal.error = Terminal::EStream::Terminal;
    const auto failed = RunTool({"batch", model, requests}, "", terminal);
    EXPECT_EQ(failed.code, EExitCode::NegativeResult);
    EXPECT_THAT(failed.error, HasSubstr("[####")) << "a bar on a terminal";
    EXPECT_EQ(ToLines(answered.output + failed.output).size(), 3U);
    EXPECT_EQ(RunTool({"batch", model, "/nonexistent"}).code, EExitCode::CannotReadOrWrite);
    EXPECT_EQ(RunTool({"batch", model, requests, "--defaults", "{\"x\": 1}"}).code,
              EExitCode::CannotReadOrWrite);
}

} // namespace
