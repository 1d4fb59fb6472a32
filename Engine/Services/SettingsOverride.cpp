#include "Engine/Services/SettingsOverride.h"

#include "Engine/Services/SettingsTable.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace qe {
namespace {

/// Holds what the host of the process has put before the settings file. Safe to use from any
/// thread.
class SettingsRegistry
{
public:
    [[nodiscard]] static SettingsRegistry& Get();

    /// Sets a value, or takes it away (none), and returns the one before.
    std::optional<int> Exchange(const SettingName& name, std::optional<int> value);
    SettingsOverride::Provider ExchangeProvider(SettingsOverride::Provider provider);

    /// See SettingsOverride::Find.
    [[nodiscard]] std::optional<int> Find(const I18NString& section, const I18NString& key);

private:
    SettingsRegistry() = default;

    std::mutex mMutex;
    std::map<SettingName, int> mValues;
    std::shared_ptr<const SettingsOverride::Provider> mProvider;
};

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

} // namespace

SettingsOverride::SettingsOverride(const I18NString& section, const I18NString& key, int value)
    : mSection(section),
      mKey(key),
      mEarlier(SettingsRegistry::Get().Exchange(MakeSettingName(section.View(), key.View()), value))
{}

SettingsOverride::~SettingsOverride()
{
    SettingsRegistry::Get().Exchange(MakeSettingName(mSection.View(), mKey.View()), mEarlier);
}

void SettingsOverride::Set(const I18NString& section, const I18NString& key, int value)
{
    SettingsRegistry::Get().Exchange(MakeSettingName(section.View(), key.View()), value);
}

void SettingsOverride::Clear(const I18NString& section, const I18NString& key)
{
    SettingsRegistry::Get().Exchange(MakeSettingName(section.View(), key.View()), std::nullopt);
}

SettingsOverride::Provider SettingsOverride::SetProvider(Provider provider)
{
    return SettingsRegistry::Get().ExchangeProvider(std::move(provider));
}

std::optional<int> SettingsOverride::Find(const I18NString& section, const I18NString& key)
{
    return SettingsRegistry::Get().Find(section, key);
}

} // namespace qe
