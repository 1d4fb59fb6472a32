#include "Joins/UserSettings.h"

#include "AUT_I_UserConfiguration.h"

#include <atomic>

namespace qe::settings {

namespace {

struct CachedFFJoins
{
    std::atomic<bool> notYetRead{true};
    std::atomic<int> mode{0};
};

struct CachedAdjustWeightByFolder
{
    std::atomic<bool> alreadyRead{false};
    std::atomic<bool> isOn{true};
};

CachedFFJoins cachedFFJoins;
CachedAdjustWeightByFolder cachedAdjustWeightByFolder;

int Read(const UserSetting& setting)
{
    const auto configuration = AUT_I_UserConfiguration::Create(RootKeyUser);
    return configuration->GetInt(setting.section, setting.key, setting.defaultValue);
}

} // namespace

int GetFFJoins()
{
    if (cachedFFJoins.notYetRead) {
        cachedFFJoins.mode = Read(kFFJoins);
        cachedFFJoins.notYetRead = false;
    }
    return cachedFFJoins.mode;
}

bool IsAdjustWeightByFolderOn()
{
    if (!cachedAdjustWeightByFolder.alreadyRead) {
        // Marked first: a configuration that fails leaves the setting on.
        cachedAdjustWeightByFolder.alreadyRead = true;
        if (Read(kAdjustWeightByFolder) == 0)
            cachedAdjustWeightByFolder.isOn = false;
    }
    return cachedAdjustWeightByFolder.isOn;
}

bool IsNewAlgoOn()
{
    return Read(kNewAlgo) != 0;
}

bool IsDoNotApplyCrossProductGovernorOn()
{
    return Read(kDoNotApplyCrossProductGovernor) != 0;
}

} // namespace qe::settings
