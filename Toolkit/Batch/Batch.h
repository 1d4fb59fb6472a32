#ifndef TOOLKIT_BATCH_BATCH_H
#define TOOLKIT_BATCH_BATCH_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Text/InputFile.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>

namespace qe::tool {

/// Counts how long things took, in a fixed amount of memory: every time is kept to five
/// significant binary digits, so that percentiles are at most 1/32 too small.
class LatencyHistogram
{
public:
    void Add(std::chrono::nanoseconds latency);

    /// Returns the least time that at least `percent` of all times do not exceed; zero when there
    /// are none.
    [[nodiscard]] std::chrono::nanoseconds GetPercentile(unsigned percent) const;

private:
    static constexpr unsigned kStepBits = 5;
    static constexpr std::size_t kSteps = std::size_t{1} << kStepBits;
    static constexpr std::size_t kBuckets = (64 - kStepBits + 1) * kSteps;

    std::array<std::uint64_t, kBuckets> mCounts{};
    std::uint64_t mTotal = 0;
};

/// How a batch goes so far, or went.
struct BatchSummary
{
    /// Every request that has its line in the output.
    std::size_t requests = 0;
    /// Those that got an error instead of an answer.
    std::size_t failures = 0;
    /// Those whose subjects cannot be connected.
    std::size_t notConnected = 0;
    /// Those with each risk, by ERisk.
    std::array<std::size_t, kRiskWords.size()> risky{};
    LatencyHistogram latencies{};
    /// How much of the input these requests take up.
    std::uint64_t bytes = 0;
    bool wasInterrupted = false;
};

/// Returns the summary in one line: requests, failures, risks, median and 99th percentile.
[[nodiscard]] std::string ToText(const BatchSummary& summary);

struct ToolModel;

/// Why the tool itself could not answer a request.
struct InternalFailure
{
    std::string text{};
};

/// One request, and its answer or why there is none.
struct BatchEntry
{
    /// The number of its line, from 1.
    std::size_t line = 0;
    /// What the request calls itself; null when it does not, or when that cannot be read.
    nlohmann::ordered_json id{};
    /// What was asked, as far as it could be read.
    Question question{};
    std::variant<InternalFailure, InputError, Answer> outcome{};
    /// What the answer risks, in SQL as the options leave it.
    Risks risks{};
};

/// Where answers go.
struct BatchOutput
{
    std::ostream& stream;
    /// Returns the line for a request, without its end. Is called on several threads at a time.
    std::function<std::string(const BatchEntry& entry)> toLine;
};

struct BatchOptions
{
    std::size_t threads = 1;
    /// What a request does not say.
    Question defaults{};
    /// A longer line is an error. In bytes.
    std::size_t longestLine = std::size_t{1} << 20;
    /// Ends the batch when it becomes true: no further line is read. May be null.
    const std::atomic<bool>* stop = nullptr;
    /// Is called after each line of output, on any thread, one call at a time. May be empty.
    std::function<void(const BatchSummary& soFar)> observer{};
};

/// Writes a line of output for each line of requests, in their order. A line that cannot be
/// answered gets an error and the rest go on. A bounded number of lines is in memory at a time.
/// Returns what the lines came to.
///
/// Throws std::runtime_error when the output cannot be written.
[[nodiscard]] BatchSummary RunBatch(const ToolModel& model, std::istream& requests,
                                    const BatchOutput& output, const BatchOptions& options);

} // namespace qe::tool

#endif
