#include "Engine/Services/LogDestination.h"

#include "Engine/Services/SettingsFile.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace qe {
namespace {

/// Reads the level without a report on the settings, which would be written to the log in turn.
/// A provider of settings that fails switches the log off: diagnostics never end a request.
int ReadLevel() noexcept
{
    try {
        return std::max(0, ReadSetting(*SettingsFile::Get().GetLatestTable(), "Log", "Level", 0));
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

LogRoute LogDestination::Open()
{
    std::vector<LogRoute> routes;
    if (CollectCaptures(routes)) {
        if (const int level = ReadLevel(); level > 0)
            routes.push_back({level, OpenStream()});
    }
    if (routes.empty())
        return {};
    if (routes.size() == 1)
        return routes.front();
    std::reverse(routes.begin(), routes.end());
    return ForkLogRoutes(std::move(routes));
}

bool LogDestination::CollectCaptures(std::vector<LogRoute>& routes)
{
    const std::lock_guard lock(mMutex);
    for (auto capture = mCaptures.rbegin(); capture != mCaptures.rend(); ++capture) {
        routes.push_back(capture->route);
        if (capture->others == EOtherTargets::Nothing)
            return false;
    }
    return true;
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

void LogDestination::AddCapture(int level, const std::shared_ptr<LogTarget>& target,
                                EOtherTargets others)
{
    const std::lock_guard lock(mMutex);
    mCaptures.push_back({{std::max(0, level), target}, others});
}

void LogDestination::RemoveCapture(const std::shared_ptr<LogTarget>& target)
{
    const std::lock_guard lock(mMutex);
    std::erase_if(mCaptures,
                  [&target](const Capture& capture) { return capture.route.target == target; });
}

} // namespace qe
