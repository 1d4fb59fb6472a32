#include "Engine/Services/CaptureLogTarget.h"

#include <utility>

namespace qe {

CaptureLogTarget::CaptureLogTarget(LogCapture::Sink sink) : mSink(std::move(sink))
{}

void CaptureLogTarget::Write(const LogEntry& entry)
{
    const std::lock_guard lock(mMutex);
    if (!mIsOpen)
        return;
    if (mSink)
        mSink(entry);
    else
        mEntries.push_back(entry);
}

void CaptureLogTarget::Close()
{
    const std::lock_guard lock(mMutex);
    mIsOpen = false;
}

std::vector<LogEntry> CaptureLogTarget::GetEntries() const
{
    const std::lock_guard lock(mMutex);
    return mEntries;
}

} // namespace qe
