#ifndef TOOLKIT_FORMAT_H
#define TOOLKIT_FORMAT_H

#include "Toolkit/Answers/FormatInput.h"

#include <iosfwd>
#include <span>
#include <string_view>

namespace qe::tool {

/// One form in which answers are written.
struct Format
{
    std::string_view name;
    /// One line for help.
    std::string_view description;
    void (*write)(std::ostream& out, const FormatInput& input);
    /// Whether its readers see in it what the answer risks. Beside the others that goes to standard
    /// error.
    bool showsRisks = false;
    /// Whether it lists the past queries that spoke, also where nobody asks for them.
    bool listsPastQueries = false;
};

/// Returns all formats, the default one first. Each new one is a line in Format.cpp.
[[nodiscard]] std::span<const Format> GetFormats();

/// Returns the format of that name, or null.
[[nodiscard]] const Format* FindFormat(std::string_view name);

/// Throws an InputError when answers to the question have no such form.
void RequireForm(const Question& question, const Format& format);

} // namespace qe::tool

#endif
