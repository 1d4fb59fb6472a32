#ifndef TOOLKIT_TEXT_PROGRESS_H
#define TOOLKIT_TEXT_PROGRESS_H

#include <cstdint>
#include <functional>
#include <string_view>

namespace qe::tool {

/// How far some work is.
struct Progress
{
    std::uint64_t done = 0;
    /// What `done` comes to in the end; 0 when that is not known.
    std::uint64_t size = 0;
    /// What was dealt with so far, and what it is: "requests".
    std::uint64_t count = 0;
    std::string_view unit{};
};

/// Is told again and again how far some work is. May be empty.
using ProgressObserver = std::function<void(const Progress& progress)>;

} // namespace qe::tool

#endif
