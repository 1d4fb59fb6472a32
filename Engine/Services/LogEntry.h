#ifndef ENGINE_SERVICES_LOGENTRY_H
#define ENGINE_SERVICES_LOGENTRY_H

#include "I18NString.h"

#include <cstdint>

namespace qe {

/// One entry of the diagnostic log, as its writer made it.
struct LogEntry
{
    /// The name under which the writer opened the log.
    I18NString name;
    int level = 0;
    /// Empty, and the two numbers 0, when the log was opened by name alone.
    I18NString title;
    std::uint32_t component = 0;
    std::uint32_t message = 0;
    I18NString text;
};

/// What becomes of captured entries elsewhere.
enum class EOtherTargets
{
    /// The capture stands in the place of the configured destination and its level, and of the
    /// captures around it.
    ReceiveNothing,
    /// Whoever took them without the capture takes them as well, first, up to its own level.
    AlsoReceive,
};

} // namespace qe

#endif
