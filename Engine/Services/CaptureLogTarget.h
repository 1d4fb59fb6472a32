#ifndef ENGINE_SERVICES_CAPTURELOGTARGET_H
#define ENGINE_SERVICES_CAPTURELOGTARGET_H

#include "Engine/Services/LogCapture.h"
#include "Engine/Services/LogTarget.h"

#include <mutex>
#include <vector>

namespace qe {

/// What a capture leaves with the writers that found it; it outlives the capture with the last of
/// them.
class CaptureLogTarget final : public LogTarget
{
public:
    /// Keeps the entries when `sink` is empty.
    explicit CaptureLogTarget(LogCapture::Sink sink);

    void Write(const LogEntry& entry) override;

    /// Drops what is written from now on. Waits for a write that is under way.
    void Close();

    [[nodiscard]] std::vector<LogEntry> GetEntries() const;

private:
    // Recursive, because a sink may write to the log itself.
    mutable std::recursive_mutex mMutex;
    bool mIsOpen = true;
    LogCapture::Sink mSink;
    std::vector<LogEntry> mEntries;
};

} // namespace qe

#endif
