#ifndef TOOLKIT_BATCH_BATCH_H
#define TOOLKIT_BATCH_BATCH_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Batch/BatchSummary.h"
#include "Toolkit/Text/InputError.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <variant>

namespace qe::tool {

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

/// Answers one request a line with one line of output, in the order of the input. A line that
/// cannot be answered gets an error and the rest go on. A bounded number of lines is in memory at a
/// time.
///
/// The settings of the process are read before the threads start. Throws std::runtime_error when
/// the output cannot be written.
[[nodiscard]] BatchSummary RunBatch(const ToolModel& model, std::istream& requests,
                                    const BatchOutput& output, const BatchOptions& options);

/// Makes the library read the settings that it reads once in the life of the process, which is not
/// safe on several threads.
void ReadSettingsOnce();

} // namespace qe::tool

#endif
