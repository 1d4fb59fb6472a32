#include "AUT_RefPtr.h"

#include <memory>

std::int32_t* AUT_RefPtrGetMemory()
{
    return std::allocator<std::int32_t>().allocate(1);
}

void AUT_RefPtrReleaseMemory(std::int32_t* count) noexcept
{
    if (count != nullptr)
        std::allocator<std::int32_t>().deallocate(count, 1);
}
