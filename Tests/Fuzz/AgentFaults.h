#ifndef TESTS_FUZZ_AGENTFAULTS_H
#define TESTS_FUZZ_AGENTFAULTS_H

#include <string>
#include <string_view>

namespace qe::test {

/// Returns what is wrong with the answers to lines of an agent about a small model: each is a
/// message in JSON, no line gets two, none tells a failure of the tool itself, and the same lines
/// get the same answers.
[[nodiscard]] std::string FindAgentFault(std::string_view bytes);

} // namespace qe::test

#endif
