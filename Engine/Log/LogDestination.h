#ifndef ENGINE_LOG_LOGDESTINATION_H
#define ENGINE_LOG_LOGDESTINATION_H

#include "LogTarget.h"

#include <memory>
#include <mutex>
#include <vector>

namespace qe {

class StreamLogTarget;

/// Decides for the whole process where log entries go and from which level on they are wanted.
/// Safe to use from any thread.
class LogDestination
{
public:
    /// What a writer needs to know: the highest level that is wanted, 0 for none, and the target,
    /// which is null when none is.
    struct Route
    {
        int level = 0;
        std::shared_ptr<LogTarget> target;
    };

    [[nodiscard]] static LogDestination& Get();

    /// Gives the route of the innermost capture, else that of the settings: section "Log", key
    /// "Level" (default 0, off), to the file that the environment variable QEREFINER_LOG names,
    /// or to standard error. Logs are opened often, so the level follows the settings file only
    /// when somebody opens the user configuration.
    [[nodiscard]] Route Open();

    /// Puts a capture in the place of what is there, until it is removed.
    void AddCapture(int level, const std::shared_ptr<LogTarget>& target);
    void RemoveCapture(const std::shared_ptr<LogTarget>& target);

private:
    LogDestination() = default;
    std::shared_ptr<LogTarget> OpenStream();

    std::mutex mMutex;
    std::vector<Route> mCaptures;
    std::shared_ptr<StreamLogTarget> mStream;
};

} // namespace qe

#endif
