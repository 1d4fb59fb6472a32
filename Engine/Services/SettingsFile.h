#ifndef ENGINE_SERVICES_SETTINGSFILE_H
#define ENGINE_SERVICES_SETTINGSFILE_H

#include "Engine/Services/SettingsTable.h"
#include "I18NString.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe {

/// Returns the path of the user's settings file: what the environment variable QEREFINER_SETTINGS
/// names, else qerefiner/settings.ini in $XDG_CONFIG_HOME or ~/.config; empty when the
/// environment has none of them. The file need not exist.
[[nodiscard]] std::string FindSettingsPath();

/// Holds what was read last from the settings file, for the whole process. Safe to use from any
/// thread.
class SettingsFile
{
public:
    [[nodiscard]] static SettingsFile& Get();

    /// Returns the contents of the settings file, empty when there is none. The file is read again
    /// only when its path, its time of change or its size differ from the last time; otherwise
    /// the call costs one look at the file system.
    [[nodiscard]] std::shared_ptr<const SettingsTable> GetTable();

    /// Returns the contents as they were read last, without a look at the file system after the
    /// first time.
    [[nodiscard]] std::shared_ptr<const SettingsTable> GetLatestTable();

    /// Returns those of the problems that were not given before, in their order.
    [[nodiscard]] std::vector<SettingsProblem>
    TakeUnreported(const std::vector<SettingsProblem>& problems);

private:
    /// What tells one state of the file from another.
    struct Stamp
    {
        std::string path;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        std::int64_t size = 0;
        std::uint64_t file = 0;
        std::uint32_t kind = 0;

        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    SettingsFile() = default;
    static Stamp MakeStamp(std::string path);
    static SettingsTable Read(const Stamp& stamp);

    std::mutex mMutex;
    Stamp mStamp;
    /// Null until the first look at the file.
    std::shared_ptr<const SettingsTable> mTable;
    std::set<std::pair<std::string, int>> mReported;
};

/// Returns the value of a setting: what the host says, else what stands in `table`, else
/// `defaultValue`.
[[nodiscard]] int ReadSetting(const SettingsTable& table, const I18NString& section,
                              const I18NString& key, int defaultValue);

} // namespace qe

#endif
