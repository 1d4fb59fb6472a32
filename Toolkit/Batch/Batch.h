#ifndef TOOLKIT_BATCH_BATCH_H
#define TOOLKIT_BATCH_BATCH_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Batch/LatencyHistogram.h"
#include "Toolkit/Text/ListLimit.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

namespace qe::tool {

struct ToolModel;

/// How a batch goes so far, or went.
struct BatchSummary
{
    /// Every request that has its line in the output.
    std::size_t requests = 0;
    /// Those that got an error instead of an answer.
    std::size_t failures = 0;
    /// Those whose subjects cannot be connected.
    std::size_t notConnected = 0;
    LatencyHistogram latencies{};
    /// How much of the input these requests take up.
    std::uint64_t bytes = 0;
    bool wasInterrupted = false;
};

struct BatchOptions
{
    std::size_t threads = 1;
    /// How many ranked alternatives an answer shows.
    ListLimit alternatives{0};
    /// What a request does not say.
    Question defaults{};
    /// A longer line is an error. In bytes.
    std::size_t longestLine = std::size_t{1} << 20;
    /// Ends the batch when it becomes true: no further line is read. May be null.
    const std::atomic<bool>* stop = nullptr;
    /// Is called after each line of output, on any thread, one call at a time. May be empty.
    std::function<void(const BatchSummary& soFar)> observer{};
};

/// Answers one request a line with one line of JSON, in the order of the input. A line that cannot
/// be answered gets an error and the rest go on. A bounded number of lines is in memory at a time.
///
/// The settings of the process are read before the threads start. Throws std::runtime_error when
/// the output cannot be written.
[[nodiscard]] BatchSummary RunBatch(const ToolModel& model, std::istream& requests,
                                    std::ostream& answers, const BatchOptions& options);

/// Makes the library read the settings that it reads once in the life of the process, which is not
/// safe on several threads.
void ReadSettingsOnce();

/// Tells the summary in one line: requests, failures, median and 99th percentile.
[[nodiscard]] std::string ToText(const BatchSummary& summary);

} // namespace qe::tool

#endif
