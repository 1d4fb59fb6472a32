#include "Engine/Services/SettingsOverride.h"

#include "Engine/Services/SettingsRegistry.h"

#include <utility>

namespace qe {

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

} // namespace qe
