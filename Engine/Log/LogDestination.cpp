#include "LogDestination.h"

#include "Engine/Settings/SettingsFile.h"
#include "Engine/Settings/SettingsReader.h"
#include "StreamLogTarget.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace qe {
namespace {

/// Reads the level without a report on the settings, which would be written to the log in turn.
/// A provider of settings that fails switches the log off: diagnostics never end a request.
int ReadLevel() noexcept
{
    try {
        return std::max(
            0, SettingsReader(SettingsFile::Get().GetLatestTable()).GetInt("Log", "Level", 0));
    } catch (...) {
        return 0;
    }
}

} // namespace

LogDestination& LogDestination::Get()
{
    // Never destroyed: whoever logs while the process ends still finds it.
    static LogDestination& instance = *new LogDestination;
    return instance;
}

LogDestination::Route LogDestination::Open()
{
    {
        const std::lock_guard lock(mMutex);
        if (!mCaptures.empty())
            return mCaptures.back();
    }
    const int level = ReadLevel();
    if (level == 0)
        return {};
    return {level, OpenStream()};
}

std::shared_ptr<LogTarget> LogDestination::OpenStream()
{
    const char* const variable = std::getenv("QEREFINER_LOG");
    const std::string path = variable == nullptr ? "" : variable;
    const std::lock_guard lock(mMutex);
    if (mStream == nullptr || mStream->GetPath() != path)
        mStream = std::make_shared<StreamLogTarget>(path);
    return mStream;
}

void LogDestination::AddCapture(int level, const std::shared_ptr<LogTarget>& target)
{
    const std::lock_guard lock(mMutex);
    mCaptures.push_back({std::max(0, level), target});
}

void LogDestination::RemoveCapture(const std::shared_ptr<LogTarget>& target)
{
    const std::lock_guard lock(mMutex);
    std::erase_if(mCaptures, [&target](const Route& route) { return route.target == target; });
}

} // namespace qe
