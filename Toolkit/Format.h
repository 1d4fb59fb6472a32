#ifndef TOOLKIT_FORMAT_H
#define TOOLKIT_FORMAT_H

#include "Toolkit/Answers/SqlAnswer.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace qe::tool {

struct ToolModel;

/// What the user may say about the form of an answer.
struct FormatOptions
{
    /// How many alternatives are shown at most.
    std::size_t maximumAlternatives = 10;
    SqlOptions sql{};
};

/// Everything that a format can draw on.
struct FormatInput
{
    const ToolModel& model;
    const Question& question;
    const Answer& answer;
    FormatOptions options{};
};

/// One form in which answers are written.
struct Format
{
    std::string_view name;
    /// One line for help.
    std::string_view description;
    void (*write)(std::ostream& out, const FormatInput& input);
};

/// Gives all formats, the default one first. Each new one is a line in Format.cpp.
[[nodiscard]] std::span<const Format> GetFormats();

/// Gives the format of that name, or null.
[[nodiscard]] const Format* FindFormat(std::string_view name);

} // namespace qe::tool

#endif
