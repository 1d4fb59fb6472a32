#include "Toolkit/Batch/Batch.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/OrderedWork.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/TextStream.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <exception>
#include <iomanip>
#include <istream>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace qe::tool {
namespace {

std::string ToMilliseconds(std::chrono::nanoseconds time)
{
    TextStream text;
    text << std::fixed << std::setprecision(2)
         << std::chrono::duration<double, std::milli>(time).count() << " ms";
    return text.str();
}

} // namespace

void LatencyHistogram::Add(std::chrono::nanoseconds latency)
{
    const auto value = static_cast<std::uint64_t>(std::max<std::int64_t>(latency.count(), 0));
    const auto digits = static_cast<unsigned>(std::bit_width(value));
    // Below 2^(kStepBits + 1) every number has a bucket of its own.
    const unsigned shift = digits > kStepBits + 1 ? digits - kStepBits - 1 : 0;
    ++mCounts[shift * kSteps + (value >> shift)];
    ++mTotal;
}

std::chrono::nanoseconds LatencyHistogram::GetPercentile(unsigned percent) const
{
    if (mTotal == 0)
        return {};
    const std::uint64_t wanted = std::max<std::uint64_t>((mTotal * percent + 99) / 100, 1);
    std::uint64_t seen = 0;
    std::size_t bucket = 0;
    while ((seen += mCounts[bucket]) < wanted)
        ++bucket;
    if (bucket < 2 * kSteps)
        return std::chrono::nanoseconds(bucket);
    const std::size_t shift = bucket / kSteps - 1;
    return std::chrono::nanoseconds((bucket - shift * kSteps) << shift);
}

namespace {

std::string WriteRisks(const BatchSummary& summary)
{
    std::string text;
    for (const auto& [word, risk] : kRiskWords) {
        const std::size_t count = summary.risky[static_cast<std::size_t>(risk)];
        if (count != 0)
            text += ", " + std::string(word) + ": " + std::to_string(count);
    }
    return text;
}

} // namespace

std::string ToText(const BatchSummary& summary)
{
    TextStream text;
    text << "requests: " << summary.requests << ", failures: " << summary.failures
         << ", not connected: " << summary.notConnected << WriteRisks(summary)
         << ", median: " << ToMilliseconds(summary.latencies.GetPercentile(50))
         << ", 99th percentile: " << ToMilliseconds(summary.latencies.GetPercentile(99))
         << (summary.wasInterrupted ? " (interrupted)" : "");
    return text.str();
}

namespace {

using Clock = std::chrono::steady_clock;
using EOutcome = WorkResult::EOutcome;

/// Lines in memory for each thread: enough to keep the threads busy beside one slow request.
constexpr std::size_t kWindowPerThread = 32;

/// What answers requests; one object serves all threads.
class Answerer
{
public:
    Answerer(const ToolModel& model, const BatchOutput& output, const BatchOptions& options)
        : mModel(model), mOutput(output), mOptions(options)
    {}

    [[nodiscard]] WorkResult operator()(const RequestLine& line)
    {
        const Clock::time_point begin = Clock::now();
        BatchEntry entry;
        entry.line = line.number;
        try {
            Answer(line, entry);
        } catch (const InputError& error) {
            entry.outcome = error;
        } catch (const std::bad_alloc&) {
            entry.outcome = InternalFailure{"out of memory while finding the answer"};
        } catch (const std::exception& error) {
            entry.outcome = InternalFailure{error.what()};
        }
        WorkResult result{.text = mOutput.toLine(entry), .outcome = Classify(entry)};
        if (const auto* const answer = std::get_if<tool::Answer>(&entry.outcome))
            result.risks = ListRisks(*answer, entry.risks);
        result.bytes = line.bytes;
        result.latency = Clock::now() - begin;
        return result;
    }

private:
    void Answer(const RequestLine& line, BatchEntry& entry)
    {
        if (line.isTooLong)
            throw InputError(
                {InputProblem{"", "the line is too long; the longest may have so many bytes: " +
                                      std::to_string(mOptions.longestLine)}});
        const RequestDocument request = ParseRequest(line.text);
        if (request.json.is_object() && request.json.contains("id"))
            entry.id = request.json["id"];
        entry.question = ReadQuestion(request, mOptions.defaults);
        std::unique_ptr<Asker>& asker = FindAsker();
        if (asker == nullptr)
            asker = std::make_unique<Asker>(mModel);
        try {
            tool::Answer answer = asker->Ask(entry.question);
            entry.risks = FindRisks(entry.question, answer, {});
            entry.outcome = std::move(answer);
        } catch (const InputError& mistakes) {
            entry.outcome = mistakes;
        } catch (...) {
            asker.reset();
            throw;
        }
    }

    /// Returns the asker of this thread, or where it is to be. What an asker has found out lies
    /// near the processor that works with it.
    [[nodiscard]] std::unique_ptr<Asker>& FindAsker()
    {
        const std::lock_guard lock(mMutex);
        return mAskers[std::this_thread::get_id()];
    }

    [[nodiscard]] static EOutcome Classify(const BatchEntry& entry)
    {
        const auto* const answer = std::get_if<tool::Answer>(&entry.outcome);
        if (answer == nullptr || answer->error)
            return EOutcome::Failed;
        return answer->connected ? EOutcome::Answered : EOutcome::NotConnected;
    }

    const ToolModel& mModel;
    const BatchOutput& mOutput;
    const BatchOptions& mOptions;
    std::mutex mMutex;
    std::map<std::thread::id, std::unique_ptr<Asker>> mAskers;
};

void Count(const WorkResult& result, BatchSummary& summary)
{
    ++summary.requests;
    summary.failures += result.outcome == EOutcome::Failed ? 1 : 0;
    summary.notConnected += result.outcome == EOutcome::NotConnected ? 1 : 0;
    for (const ERisk risk : result.risks)
        ++summary.risky[static_cast<std::size_t>(risk)];
    summary.latencies.Add(result.latency);
    summary.bytes = result.bytes;
}

} // namespace

BatchSummary RunBatch(const ToolModel& model, std::istream& requests, const BatchOutput& output,
                      const BatchOptions& options)
{
    BatchSummary summary;
    Answerer answerer(model, output, options);
    OrderedWork work(
        options.threads, options.threads * kWindowPerThread,
        [&answerer](const RequestLine& requestLine) { return answerer(requestLine); },
        [&](const WorkResult& result) {
            if (!(output.stream << result.text << '\n'))
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
    output.stream.flush();
    return summary;
}

} // namespace qe::tool
