// What it costs to read the file of a large model and to answer files of requests about it.

#include "Benchmarks/Galaxy.h"
#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/JsonText.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

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

} // namespace
