#include "Engine/Services/ForkLogTarget.h"

#include <algorithm>
#include <utility>

namespace qe {

LogRoute ForkLogTarget::MakeRoute(std::vector<LogRoute> routes)
{
    int level = 0;
    for (const LogRoute& route : routes)
        level = std::max(level, route.level);
    return {level, std::make_shared<ForkLogTarget>(std::move(routes))};
}

ForkLogTarget::ForkLogTarget(std::vector<LogRoute> routes) : mRoutes(std::move(routes))
{}

void ForkLogTarget::Write(const LogEntry& entry)
{
    for (const LogRoute& route : mRoutes) {
        if (entry.level <= route.level)
            route.target->Write(entry);
    }
}

} // namespace qe
