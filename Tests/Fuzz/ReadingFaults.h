#ifndef TESTS_FUZZ_READINGFAULTS_H
#define TESTS_FUZZ_READINGFAULTS_H

#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/InputFile.h"

#include <functional>
#include <string>

namespace qe::test {

/// Returns what is wrong with how mistakes in input are told: each in one line that says something.
[[nodiscard]] std::string FindFault(const tool::InputError& error);

/// Returns what is wrong with a model that was read: written as a model file it must be read as
/// the same model, with the same text.
[[nodiscard]] std::string FindFault(const tool::ToolModel& model);

/// Returns the fault of what the reader returns, or of the InputError that it throws.
[[nodiscard]] std::string FindReadingFault(const std::function<tool::ToolModel()>& read);

} // namespace qe::test

#endif
