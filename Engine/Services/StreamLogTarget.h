#ifndef ENGINE_SERVICES_STREAMLOGTARGET_H
#define ENGINE_SERVICES_STREAMLOGTARGET_H

#include "Engine/Services/LogTarget.h"

#include <fstream>
#include <mutex>
#include <string>

namespace qe {

/// Writes entries to a file, each after a line that tells name, level, title and numbers.
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
