#include "Engine/Services/SettingsRegistry.h"

#include <utility>

namespace qe {

SettingsRegistry& SettingsRegistry::Get()
{
    // Never destroyed: settings can be asked for until the process has ended.
    static SettingsRegistry& instance = *new SettingsRegistry;
    return instance;
}

std::optional<int> SettingsRegistry::Exchange(const SettingName& name, std::optional<int> value)
{
    const std::lock_guard lock(mMutex);
    std::optional<int> earlier;
    if (const auto found = mValues.find(name); found != mValues.end())
        earlier = found->second;
    if (value)
        mValues.insert_or_assign(name, *value);
    else
        mValues.erase(name);
    return earlier;
}

SettingsOverride::Provider SettingsRegistry::ExchangeProvider(SettingsOverride::Provider provider)
{
    std::shared_ptr<const SettingsOverride::Provider> next;
    if (provider)
        next = std::make_shared<const SettingsOverride::Provider>(std::move(provider));
    const std::lock_guard lock(mMutex);
    mProvider.swap(next);
    return next == nullptr ? SettingsOverride::Provider() : *next;
}

std::optional<int> SettingsRegistry::Find(const I18NString& section, const I18NString& key)
{
    std::shared_ptr<const SettingsOverride::Provider> provider;
    {
        const std::lock_guard lock(mMutex);
        if (!mValues.empty()) {
            const auto found = mValues.find(MakeSettingName(section.View(), key.View()));
            if (found != mValues.end())
                return found->second;
        }
        provider = mProvider;
    }
    // Called without the lock, because a provider may ask for other settings.
    if (provider == nullptr)
        return std::nullopt;
    return (*provider)(section, key);
}

} // namespace qe
