#include "Engine/Services/LogCapture.h"

#include "Engine/Services/LogDestination.h"

#include <mutex>
#include <utility>
#include <vector>

namespace qe {

/// What a capture leaves with the writers that found it; it outlives the capture with the last of
/// them.
class CaptureLogTarget final : public LogTarget
{
public:
    /// Keeps the entries when `sink` is empty.
    explicit CaptureLogTarget(LogCapture::Sink sink) : mSink(std::move(sink)) {}

    void Write(const LogEntry& entry) override
    {
        const std::lock_guard lock(mMutex);
        if (!mIsOpen)
            return;
        if (mSink)
            mSink(entry);
        else
            mEntries.push_back(entry);
    }

    /// Drops what is written from now on. Waits for a write that is under way.
    void Close()
    {
        const std::lock_guard lock(mMutex);
        mIsOpen = false;
    }

    /// Returns a copy of the entries that were kept, in the order of writing.
    [[nodiscard]] std::vector<LogEntry> GetEntries() const
    {
        const std::lock_guard lock(mMutex);
        return mEntries;
    }

private:
    // Recursive, because a sink may write to the log itself.
    mutable std::recursive_mutex mMutex;
    bool mIsOpen = true;
    LogCapture::Sink mSink;
    std::vector<LogEntry> mEntries;
};

LogCapture::LogCapture(int level) : LogCapture(level, Sink())
{}

LogCapture::LogCapture(int level, Sink sink, EOthers others)
    : mTarget(std::make_shared<CaptureLogTarget>(std::move(sink)))
{
    LogDestination::Get().AddCapture(level, mTarget, others);
}

LogCapture::~LogCapture()
{
    LogDestination::Get().RemoveCapture(mTarget);
    mTarget->Close();
}

std::vector<LogEntry> LogCapture::GetEntries() const
{
    return mTarget->GetEntries();
}

} // namespace qe
