#ifndef ENGINE_SERVICES_LOGCAPTURE_H
#define ENGINE_SERVICES_LOGCAPTURE_H

#include "Engine/Services/LogEntry.h"
#include "QEENGINE_EXPORT.h"

#include <functional>
#include <memory>
#include <vector>

namespace qe {

class CaptureLogTarget;

/// Takes the log of the whole process while it lives. Captures nest: the one made last takes
/// everything, and those before it come back as it goes. A log that was opened before keeps the
/// destination that it found. Safe to use from any thread.
class QEENGINE_EXPORT LogCapture
{
public:
    using Sink = std::function<void(const LogEntry&)>;

    using EOthers = EOtherTargets;

    /// Keeps the entries up to `level` for GetEntries; others get nothing.
    explicit LogCapture(int level);

    /// Hands the entries up to `level` to `sink` instead, one at a time, on the threads that write
    /// them; none after the capture is gone. What the sink throws reaches the writer.
    LogCapture(int level, Sink sink, EOthers others = EOthers::ReceiveNothing);

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// Returns a copy of what was kept so far, in the order of writing.
    [[nodiscard]] std::vector<LogEntry> GetEntries() const;

private:
    std::shared_ptr<CaptureLogTarget> mTarget;
};

} // namespace qe

#endif
