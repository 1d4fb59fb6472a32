#ifndef ENGINE_SERVICES_FORKLOGTARGET_H
#define ENGINE_SERVICES_FORKLOGTARGET_H

#include "Engine/Services/LogRoute.h"

#include <vector>

namespace qe {

/// Passes entries on to several targets, in their order, to each up to its own level.
class ForkLogTarget final : public LogTarget
{
public:
    /// Gives one route for all of `routes`, none of which is without a target.
    [[nodiscard]] static LogRoute MakeRoute(std::vector<LogRoute> routes);

    explicit ForkLogTarget(std::vector<LogRoute> routes);

    void Write(const LogEntry& entry) override;

private:
    std::vector<LogRoute> mRoutes;
};

} // namespace qe

#endif
