#ifndef ENGINE_SERVICES_LOGTARGET_H
#define ENGINE_SERVICES_LOGTARGET_H

#include "Engine/Services/LogEntry.h"

namespace qe {

/// Where log entries go. Any number of threads may write to one target.
class LogTarget
{
public:
    virtual ~LogTarget() = default;

    /// Takes one entry. Entries of several threads come one after the other.
    virtual void Write(const LogEntry& entry) = 0;
};

} // namespace qe

#endif
