#include "Toolkit/Batch/Batch.h"

#include "AQE_I_Refiner.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/OrderedWork.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/InputError.h"
#include "Toolkit/Text/JsonLayout.h"

#include <iomanip>
#include <istream>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace qe::tool {

namespace {

using Clock = std::chrono::steady_clock;
using EOutcome = WorkResult::EOutcome;

/// Lines in memory for each thread: enough to keep the threads busy beside one slow request.
constexpr std::size_t kWindowPerThread = 32;

Json ToJson(const InputError& error)
{
    Json problems = Json::array();
    for (const InputProblem& problem : error.GetProblems())
        problems.push_back({{"place", problem.place},
                            {"text", problem.text},
                            {"nearestNames", problem.nearestNames}});
    return {{"kind", "request"}, {"text", error.what()}, {"problems", problems}};
}

/// Answers requests; one object serves all threads.
class Answerer
{
public:
    Answerer(const ToolModel& model, const BatchOptions& options) : mModel(model), mOptions(options)
    {}

    [[nodiscard]] WorkResult operator()(const RequestLine& line) const
    {
        const Clock::time_point begin = Clock::now();
        WorkResult result;
        Json output{{"line", line.number}, {"id", nullptr}};
        try {
            result.outcome = Answer(line, output);
        } catch (const InputError& error) {
            output["error"] = ToJson(error);
            result.outcome = EOutcome::Failed;
        } catch (const std::exception& error) {
            output["error"] = {{"kind", "internal"}, {"text", error.what()}};
            result.outcome = EOutcome::Failed;
        }
        result.text = ToJsonLine(output);
        result.bytes = line.bytes;
        result.latency = Clock::now() - begin;
        return result;
    }

private:
    [[nodiscard]] EOutcome Answer(const RequestLine& line, Json& output) const
    {
        if (line.isTooLong)
            throw InputError(
                {InputProblem{"", "the line is too long; the longest may have so many bytes: " +
                                      std::to_string(mOptions.longestLine)}});
        const Json request = ParseJsonLine(line.text);
        if (request.is_object() && request.contains("id"))
            output["id"] = request["id"];
        const Question question = ReadQuestion(request, mOptions.defaults);
        const tool::Answer answer = Ask(mModel, question);
        output.update(tool::ToJson(question, answer, mOptions.alternatives));
        if (answer.error)
            return EOutcome::Failed;
        return answer.connected ? EOutcome::Answered : EOutcome::NotConnected;
    }

    const ToolModel& mModel;
    const BatchOptions& mOptions;
};

void Count(const WorkResult& result, BatchSummary& summary)
{
    ++summary.requests;
    summary.failures += result.outcome == EOutcome::Failed ? 1 : 0;
    summary.notConnected += result.outcome == EOutcome::NotConnected ? 1 : 0;
    summary.latencies.Add(result.latency);
    summary.bytes = result.bytes;
}

std::string ToMilliseconds(std::chrono::nanoseconds time)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(2)
         << std::chrono::duration<double, std::milli>(time).count() << " ms";
    return text.str();
}

} // namespace

BatchSummary RunBatch(const ToolModel& model, std::istream& requests, std::ostream& answers,
                      const BatchOptions& options)
{
    ReadSettingsOnce();
    BatchSummary summary;
    OrderedWork work(options.threads, options.threads * kWindowPerThread, Answerer(model, options),
                     [&](const WorkResult& result) {
                         if (!(answers << result.text << '\n'))
                             throw std::runtime_error("The answers cannot be written");
                         Count(result, summary);
                         if (options.observer)
                             options.observer(summary);
                     });
    const auto isStopped = [&] { return options.stop != nullptr && options.stop->load(); };
    LineReader reader(requests, options.longestLine);
    RequestLine line;
    while (!isStopped() && reader.Next(line)) {
        // What came with the interrupt is no whole line.
        if (!isStopped())
            work.Add(std::move(line));
    }
    work.Finish();
    summary.wasInterrupted = isStopped();
    answers.flush();
    return summary;
}

void ReadSettingsOnce()
{
    static_cast<void>(AQE_I_Refiner::GetFFJoinsMode());
    // The weight of folders is read when the first candidates are compared.
    model::ModelBuilder builder;
    const amd_id a = builder.AddQuerySubject({}, "a");
    const amd_id b = builder.AddQuerySubject({}, "b");
    for (const char* name : {"first", "second"})
        builder.AddRelationship({}, name, {a, model::ZeroToMany}, {b, model::OneToOne}, "1 = 1");
    Question question;
    question.subjects = {"a", "b"};
    static_cast<void>(Ask(ToolModel{builder.Build()}, question));
}

std::string ToText(const BatchSummary& summary)
{
    std::ostringstream text;
    text << "requests: " << summary.requests << ", failures: " << summary.failures
         << ", not connected: " << summary.notConnected
         << ", median: " << ToMilliseconds(summary.latencies.GetPercentile(50))
         << ", 99th percentile: " << ToMilliseconds(summary.latencies.GetPercentile(99))
         << (summary.wasInterrupted ? " (interrupted)" : "");
    return text.str();
}

} // namespace qe::tool
