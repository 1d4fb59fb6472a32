#include "Engine/Services/LogDestination.h"

#include "Engine/Services/SettingsFile.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

namespace qe {
namespace {

std::string Compose(const LogEntry& entry)
{
    std::ostringstream out;
    out << "--- " << entry.name << ", level " << entry.level;
    if (!entry.title.IsEmpty())
        out << ", " << entry.title;
    if (entry.component != 0 || entry.message != 0) {
        out << std::hex << std::uppercase << std::setfill('0') << " (0x" << std::setw(8)
            << entry.component << ", 0x" << std::setw(8) << entry.message << ')';
    }
    out << '\n' << entry.text;
    if (!entry.text.View().ends_with('\n'))
        out << '\n';
    return out.str();
}

class ForkLogTarget final : public LogTarget
{
public:
    explicit ForkLogTarget(std::vector<LogRoute> routes) : mRoutes(std::move(routes)) {}

    void Write(const LogEntry& entry) override
    {
        for (const LogRoute& route : mRoutes) {
            if (entry.level <= route.level)
                route.target->Write(entry);
        }
    }

private:
    std::vector<LogRoute> mRoutes;
};

} // namespace

LogRoute ForkLogRoutes(std::vector<LogRoute> routes)
{
    int level = 0;
    for (const LogRoute& route : routes)
        level = std::max(level, route.level);
    return {level, std::make_shared<ForkLogTarget>(std::move(routes))};
}

StreamLogTarget::StreamLogTarget(std::string path) : mPath(std::move(path))
{
    if (!mPath.empty() && mPath != "-" && mPath != "stderr")
        mFile.open(mPath, std::ios::app | std::ios::binary);
}

void StreamLogTarget::Write(const LogEntry& entry)
{
    const std::string text = Compose(entry);
    const std::lock_guard lock(mMutex);
    std::ostream& out = mFile.is_open() ? static_cast<std::ostream&>(mFile) : std::cerr;
    out << text << std::flush;
}

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
        if (capture->others == EOtherTargets::ReceiveNothing)
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
