// What it costs to read the file of a large model and to answer files of requests about it.

#include "Benchmarks/Galaxy.h"
#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/History/NamedPairs.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/JsonText.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace qe::tool;

constexpr GalaxySize kSize;

void ReadGalaxy(benchmark::State& state)
{
    const std::string text = WriteModelText(MakeGalaxy(kSize));
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadModelText(text, "galaxy.json"));
}
BENCHMARK(ReadGalaxy)->Unit(benchmark::kMillisecond);

/// From the text of the model to the answer of one request.
void AnswerFromStart(benchmark::State& state)
{
    const std::string text = WriteModelText(MakeGalaxy(kSize));
    const Question question = ReadQuestion(ParseRequest(MakeGalaxyRequests(kSize, 1).front()), {});
    for (auto _ : state)
        benchmark::DoNotOptimize(Ask(ReadModelText(text, "galaxy.json"), question));
}
BENCHMARK(AnswerFromStart)->Unit(benchmark::kMillisecond);

/// Requests of nine subjects, a thousand different ones in each round; the argument is the number
/// of threads.
void AnswerBatch(benchmark::State& state)
{
    constexpr std::size_t kRequests = 1000;
    const ToolModel model = MakeGalaxy(kSize);
    std::string lines;
    for (const std::string& request : MakeGalaxyRequests(kSize, kRequests))
        lines += request + '\n';
    const BatchOptions options{.threads = static_cast<std::size_t>(state.range(0))};
    for (auto _ : state) {
        std::istringstream requests(lines);
        std::ostringstream answers;
        const BatchOutput output{.stream = answers, .toLine = [](const BatchEntry& entry) {
                                     return ToJsonLine(ToJson(entry, ListLimit{0}));
                                 }};
        benchmark::DoNotOptimize(RunBatch(model, requests, output, options));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRequests));
}
BENCHMARK(AnswerBatch)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/// A history of as many queries, each of its own text, over requests of the galaxy.
std::string MakeHistory(std::size_t queries)
{
    constexpr std::size_t kShapes = 1000;
    const ToolModel model = MakeGalaxy(kSize);
    std::vector<std::string> shapes;
    for (const std::string& line : MakeGalaxyRequests(kSize, kShapes)) {
        const Question question = ReadQuestion(ParseRequest(line), {});
        const Answer answer = Ask(model, question);
        nlohmann::json record{{"subjects", question.subjects}, {"joins", nlohmann::json::array()}};
        for (const amd_id& id : answer.path) {
            const AnswerJoin* const join = answer.FindJoin(id);
            for (const auto& [left, right] :
                 FindNamedPairs(*model.model, join->left, join->right, join->condition))
                record["joins"].push_back({left, right});
        }
        shapes.push_back(record.dump());
    }
    std::string text;
    for (std::size_t query = 0; query < queries; ++query) {
        std::string line = shapes[query % kShapes];
        line.back() = ',';
        text += line + "\"text\": \"" + std::to_string(query) + "\"}\n";
    }
    return text;
}

class HistoryFiles
{
public:
    explicit HistoryFiles(std::size_t queries)
        : mPath(std::filesystem::temp_directory_path() /
                ("history." + std::to_string(::getpid()) + ".jsonl"))
    {
        std::ofstream(mPath) << MakeHistory(queries);
    }
    HistoryFiles(const HistoryFiles&) = delete;
    HistoryFiles& operator=(const HistoryFiles&) = delete;
    ~HistoryFiles() { std::filesystem::remove(mPath); }

    [[nodiscard]] LoadedHistory Load(const ToolModel& model) const
    {
        return LoadHistory(*model.model, {&mPath, 1});
    }

private:
    std::filesystem::path mPath;
};

void LoadQueries(benchmark::State& state)
{
    const ToolModel model = MakeGalaxy(kSize);
    const HistoryFiles files(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(WithHistory(model, files.Load(model).history));
}
BENCHMARK(LoadQueries)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// Requests of nine subjects one after the other, with a history of so many queries.
void AnswerWithHistory(benchmark::State& state)
{
    const auto queries = static_cast<std::size_t>(state.range(0));
    ToolModel model = MakeGalaxy(kSize);
    if (queries > 0)
        model = WithHistory(model, HistoryFiles(queries).Load(model).history);
    std::vector<Question> questions;
    for (const std::string& request : MakeGalaxyRequests(kSize, 200))
        questions.push_back(ReadQuestion(ParseRequest(request), {}));
    for (auto _ : state) {
        Asker asker(model);
        for (const Question& question : questions)
            benchmark::DoNotOptimize(asker.Ask(question));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(questions.size()));
}
BENCHMARK(AnswerWithHistory)->Arg(0)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
