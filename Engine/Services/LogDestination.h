#ifndef ENGINE_SERVICES_LOGDESTINATION_H
#define ENGINE_SERVICES_LOGDESTINATION_H

#include "Engine/Services/LogEntry.h"
#include "Engine/Services/LogTarget.h"

#include <memory>
#include <mutex>
#include <vector>

namespace qe {

/// Decides for the whole process where log entries go and from which level on they are wanted.
/// Safe to use from any thread.
class LogDestination
{
public:
    [[nodiscard]] static LogDestination& Get();

    /// Returns the route of the innermost capture, together with those around it as far as captures
    /// let others be told; else that of the settings: section "Log", key "Level" (default 0, off),
    /// to the file that the environment variable QEREFINER_LOG names, or to standard error. Logs
    /// are opened often, so the level follows the settings file only when somebody opens the user
    /// configuration.
    [[nodiscard]] LogRoute Open();

    /// Adds a capture inside those that are there, until it is removed.
    void AddCapture(int level, const std::shared_ptr<LogTarget>& target, EOtherTargets others);
    void RemoveCapture(const std::shared_ptr<LogTarget>& target);

private:
    struct Capture
    {
        LogRoute route;
        EOtherTargets others;
    };

    LogDestination() = default;
    /// Appends the routes of the captures that count, innermost first; returns whether the
    /// configured destination counts too.
    bool CollectCaptures(std::vector<LogRoute>& routes);
    std::shared_ptr<LogTarget> OpenStream();

    std::mutex mMutex;
    std::vector<Capture> mCaptures;
    std::shared_ptr<StreamLogTarget> mStream;
};

} // namespace qe

#endif
