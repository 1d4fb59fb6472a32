// The entry points of libFuzzer. The environment chooses the target, so that it also reaches the
// processes that libFuzzer starts itself.

#include "Tests/Fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using qe::test::FuzzTarget;

constexpr const char* kVariable = "QEREFINER_FUZZ_TARGET";

/// Ends the program with the names of the targets, one a line, when the environment names none.
const FuzzTarget& ChooseTarget()
{
    const char* const wanted = std::getenv(kVariable);
    const auto targets = qe::test::ListFuzzTargets();
    const auto found =
        std::find_if(targets.begin(), targets.end(), [wanted](const FuzzTarget& target) {
            return wanted != nullptr && target.name == wanted;
        });
    if (found != targets.end())
        return *found;
    for (const FuzzTarget& target : targets)
        std::printf("%s\n", std::string(target.name).c_str());
    std::exit(wanted == nullptr ? EXIT_SUCCESS : EXIT_FAILURE);
}

const FuzzTarget& GetTarget()
{
    static const FuzzTarget& target = ChooseTarget();
    return target;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argumentCount*/, char*** /*arguments*/)
{
    static_cast<void>(GetTarget());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    const std::string fault = GetTarget().findFault(bytes);
    if (!fault.empty()) {
        std::fprintf(stderr, "%s: %s\n", std::string(GetTarget().name).c_str(), fault.c_str());
        std::abort();
    }
    return 0;
}
