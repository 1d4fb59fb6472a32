#ifndef ENGINE_SERVICES_LOGDESTINATION_H
#define ENGINE_SERVICES_LOGDESTINATION_H

#include "Engine/Services/LogEntry.h"
#include "I18NString.h"

#include <cstdint>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace qe {

/// Where log entries go. Any number of threads may write to one target.
class LogTarget
{
public:
    virtual ~LogTarget() = default;

    /// Takes one entry. Entries of several threads come one after the other.
    virtual void Write(const LogEntry& entry) = 0;
};

/// What a writer needs to know: the highest level that is wanted, 0 for none, and the target,
/// which is null when none is.
struct LogRoute
{
    int level = 0;
    std::shared_ptr<LogTarget> target{};
};

/// Returns one route for all of `routes`, none of which is without a target: an entry goes to the
/// targets in their order, to each up to its own level.
[[nodiscard]] LogRoute ForkLogRoutes(std::vector<LogRoute> routes);

/// Writes entries to a file, each after a line with name, level, title and numbers.
class StreamLogTarget final : public LogTarget
{
public:
    /// Opens the file for appending. "-", "stderr" and the empty path stand for standard error,
    /// which also takes the entries of a file that cannot be opened.
    explicit StreamLogTarget(std::string path);

    void Write(const LogEntry& entry) override;

    [[nodiscard]] const std::string& GetPath() const noexcept { return mPath; }

private:
    std::string mPath;
    std::mutex mMutex;
    std::ofstream mFile;
};

/// Decides for the whole process where log entries go and from which level on they are wanted.
/// Safe to use from any thread.
class LogDestination
{
public:
    [[nodiscard]] static LogDestination& Get();

    /// Returns the route of the innermost capture, together with those around it as far as captures
    /// let others receive too; else that of the settings: section "Log", key "Level" (default 0,
    /// off), to the file that the environment variable QEREFINER_LOG names, or to standard error.
    /// Logs are opened often, so the level follows the settings file only when somebody opens the
    /// user configuration.
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
