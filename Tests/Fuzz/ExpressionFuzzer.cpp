#include "Tests/Engine/Expression/ExpressionInvariants.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string broken = FindBrokenInvariant(std::string(data, data + size));
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
