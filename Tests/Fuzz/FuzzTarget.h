#ifndef TESTS_FUZZ_FUZZTARGET_H
#define TESTS_FUZZ_FUZZTARGET_H

#include <span>
#include <string>
#include <string_view>

namespace qe::test {

/// One reader of bytes from outside, and what it promises about all of them.
struct FuzzTarget
{
    /// The word by which it is chosen, and the name of its folder in Corpus/.
    std::string_view name;
    /// Returns what does not hold that should hold for every input; empty when all is well. What it
    /// throws is a fault too.
    std::string (*findFault)(std::string_view bytes);
};

/// Returns the targets of this program.
[[nodiscard]] std::span<const FuzzTarget> ListFuzzTargets();

} // namespace qe::test

#endif
