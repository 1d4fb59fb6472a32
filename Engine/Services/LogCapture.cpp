#include "Engine/Services/LogCapture.h"

#include "Engine/Services/CaptureLogTarget.h"
#include "Engine/Services/LogDestination.h"

#include <utility>

namespace qe {

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
