#ifndef ENGINE_SERVICES_SETTINGSREGISTRY_H
#define ENGINE_SERVICES_SETTINGSREGISTRY_H

#include "Engine/Services/SettingsOverride.h"
#include "Engine/Services/SettingsTable.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace qe {

/// Holds what the host of the process has put before the settings file. Safe to use from any
/// thread.
class SettingsRegistry
{
public:
    [[nodiscard]] static SettingsRegistry& Get();

    /// Sets a value, or takes it away (none), and gives the one before.
    std::optional<int> Exchange(const SettingName& name, std::optional<int> value);
    SettingsOverride::Provider ExchangeProvider(SettingsOverride::Provider provider);

    /// Gives what the host says about a setting: the value that is set, else the provider's.
    [[nodiscard]] std::optional<int> Find(const I18NString& section, const I18NString& key);

private:
    SettingsRegistry() = default;

    std::mutex mMutex;
    std::map<SettingName, int> mValues;
    std::shared_ptr<const SettingsOverride::Provider> mProvider;
};

} // namespace qe

#endif
