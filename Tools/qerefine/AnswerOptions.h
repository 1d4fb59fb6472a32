#ifndef TOOLS_QEREFINE_ANSWEROPTIONS_H
#define TOOLS_QEREFINE_ANSWEROPTIONS_H

#include "Toolkit/Format.h"

#include <string>

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// How an answer is written, as the command line says. The object outlives the parsing.
class AnswerOptions
{
public:
    AnswerOptions() = default;
    AnswerOptions(const AnswerOptions&) = delete;
    AnswerOptions& operator=(const AnswerOptions&) = delete;

    /// Adds --format with all formats, and what they can be told.
    void Add(CLI::App& command);

    /// Writes the answer to the output, what the user should know besides to the error stream, and
    /// sets the exit code. Throws InputError when the start of the SQL is no subject.
    void Write(CommandContext& context, const ToolModel& model, const Question& question,
               const Answer& answer);

private:
    std::string mFormat = "text";
    std::size_t mAlternatives = 10;
    bool mSelects = false;
    bool mInner = false;
    std::string mStart;
};

} // namespace qe::tool

#endif
