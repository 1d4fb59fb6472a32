#ifndef TESTS_FUZZ_REQUESTFAULTS_H
#define TESTS_FUZZ_REQUESTFAULTS_H

#include <string>
#include <string_view>

namespace qe::test {

/// Returns what is wrong with how one request is read: written anew by the JSON library it must be
/// the same question.
[[nodiscard]] std::string FindRequestFault(std::string_view bytes);

/// Returns what is wrong with the answers to lines of requests about a small model: one line of
/// JSON for each, and no failure of the tool itself.
[[nodiscard]] std::string FindBatchFault(std::string_view bytes);

/// Returns what is wrong with how a setting on the command line is read.
[[nodiscard]] std::string FindSettingFault(std::string_view bytes);

/// Returns what is wrong with how past queries are read and counted: packed and read again they
/// must be the same, and what is forgotten must come back.
[[nodiscard]] std::string FindHistoryFault(std::string_view bytes);

} // namespace qe::test

#endif
