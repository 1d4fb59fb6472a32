#include "Engine/Services/LogTarget.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>
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

} // namespace qe
