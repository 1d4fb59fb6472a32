#include "Engine/Services/SettingsFile.h"

#include "Engine/Services/SettingsOverride.h"

#include <cstdlib>
#include <fstream>
#include <ios>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace qe {
namespace {

/// Far above any real file; keeps a wrong path from filling the memory.
constexpr std::int64_t kMaximumSize = 1 << 20;

std::string GetVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

SettingsTable MakeUnusable(const std::string& path, const char* reason)
{
    SettingsTable table;
    table.problems.push_back({path, 0, reason});
    return table;
}

} // namespace

std::string FindSettingsPath()
{
    std::string path = GetVariable("QEREFINER_SETTINGS");
    if (!path.empty())
        return path;
    const std::string folder = GetVariable("XDG_CONFIG_HOME");
    if (!folder.empty())
        return folder + "/qerefiner/settings.ini";
    const std::string home = GetVariable("HOME");
    return home.empty() ? home : home + "/.config/qerefiner/settings.ini";
}

SettingsFile& SettingsFile::Get()
{
    // Never destroyed: settings can be asked for until the process has ended.
    static SettingsFile& instance = *new SettingsFile;
    return instance;
}

std::shared_ptr<const SettingsTable> SettingsFile::GetTable()
{
    Stamp stamp = MakeStamp(FindSettingsPath());
    const std::lock_guard lock(mMutex);
    if (mTable == nullptr || stamp != mStamp) {
        mTable = std::make_shared<const SettingsTable>(Read(stamp));
        mStamp = std::move(stamp);
    }
    return mTable;
}

std::shared_ptr<const SettingsTable> SettingsFile::GetLatestTable()
{
    {
        const std::lock_guard lock(mMutex);
        if (mTable != nullptr)
            return mTable;
    }
    return GetTable();
}

std::vector<SettingsProblem>
SettingsFile::TakeUnreported(const std::vector<SettingsProblem>& problems)
{
    std::vector<SettingsProblem> unreported;
    const std::lock_guard lock(mMutex);
    for (const SettingsProblem& problem : problems) {
        if (mReported.emplace(problem.path, problem.line).second)
            unreported.push_back(problem);
    }
    return unreported;
}

SettingsFile::Stamp SettingsFile::MakeStamp(std::string path)
{
    Stamp stamp;
    struct stat status = {};
    if (!path.empty() && ::stat(path.c_str(), &status) == 0) {
        stamp.seconds = status.st_mtim.tv_sec;
        stamp.nanoseconds = status.st_mtim.tv_nsec;
        stamp.size = status.st_size;
        stamp.file = status.st_ino;
        stamp.kind = status.st_mode;
    }
    stamp.path = std::move(path);
    return stamp;
}

SettingsTable SettingsFile::Read(const Stamp& stamp)
{
    if (stamp.kind == 0)
        return {};
    // A pipe or a device could keep the request waiting for ever.
    if (!S_ISREG(stamp.kind))
        return MakeUnusable(stamp.path, "not a regular file");
    if (stamp.size > kMaximumSize)
        return MakeUnusable(stamp.path, "too large for a settings file");
    std::ifstream file(stamp.path, std::ios::binary);
    if (!file)
        return MakeUnusable(stamp.path, "cannot be read");
    try {
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        return ParseSettings(text, stamp.path);
    } catch (const std::ios_base::failure&) {
        // What the first part says without the rest is not what was meant.
        return MakeUnusable(stamp.path, "cannot be read");
    }
}

int ReadSetting(const SettingsTable& table, const I18NString& section, const I18NString& key,
                int defaultValue)
{
    if (const std::optional<int> value = SettingsOverride::Find(section, key))
        return *value;
    if (table.values.empty())
        return defaultValue;
    return table.Find(MakeSettingName(section.View(), key.View())).value_or(defaultValue);
}

std::vector<SettingsProblem> GetSettingsProblems()
{
    return SettingsFile::Get().GetTable()->problems;
}

std::vector<std::pair<std::string, std::string>> GetSettingsInFile()
{
    std::vector<std::pair<std::string, std::string>> names;
    for (const auto& [name, value] : SettingsFile::Get().GetTable()->values)
        names.push_back(name);
    return names;
}

} // namespace qe
