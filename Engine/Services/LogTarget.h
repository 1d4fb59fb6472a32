#ifndef ENGINE_SERVICES_LOGTARGET_H
#define ENGINE_SERVICES_LOGTARGET_H

#include "Engine/Services/LogEntry.h"

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

} // namespace qe

#endif
