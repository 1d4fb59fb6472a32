#ifndef PLATFORM_AQE_GOVERNORS_H
#define PLATFORM_AQE_GOVERNORS_H

#include <cstdint>

/// What the administrator allows a request to do.
struct AQE_Governors
{
    /// What happens when query subjects cannot be joined: 0 nothing, 1 a warning, 2 an error.
    std::int32_t crossProductAllowed = 0;
    /// How shortcuts are grouped: 0 by what they stand for, otherwise by where they are kept.
    std::int32_t shortcutGrouping = 0;
};

#endif
