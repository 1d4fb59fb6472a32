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

enum class ESwitch
{
    NotRead,
    Off,
    On,
};

CachedFFJoins cachedFFJoins;
std::atomic<ESwitch> cachedAdjustWeightByFolder{ESwitch::NotRead};

int Read(const UserSetting& setting)
{
    const auto configuration = AUT_I_UserConfiguration::Create(RootKeyUser);
    return configuration->GetInt(setting.section, setting.key, setting.defaultValue);
}

/// Stores what a thread has read, and returns what holds: among first readers at once, the value of
/// the one that is done first.
ESwitch Keep(ESwitch read)
{
    ESwitch kept = ESwitch::NotRead;
    return cachedAdjustWeightByFolder.compare_exchange_strong(kept, read) ? read : kept;
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
    const ESwitch cached = cachedAdjustWeightByFolder;
    if (cached != ESwitch::NotRead)
        return cached == ESwitch::On;
    try {
        return Keep(Read(kAdjustWeightByFolder) != 0 ? ESwitch::On : ESwitch::Off) == ESwitch::On;
    } catch (...) {
        static_cast<void>(Keep(ESwitch::Off));
        throw;
    }
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
