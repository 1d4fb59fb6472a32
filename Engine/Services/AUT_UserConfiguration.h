#ifndef ENGINE_SERVICES_AUT_USERCONFIGURATION_H
#define ENGINE_SERVICES_AUT_USERCONFIGURATION_H

#include "AUT_I_UserConfiguration.h"
#include "Engine/Services/SettingsReader.h"

/// The user's settings. All root keys lead to the same ones.
class AUT_UserConfiguration final : public AUT_I_UserConfiguration
{
public:
    AUT_UserConfiguration();

    [[nodiscard]] int GetInt(const I18NString& section, const I18NString& key,
                             int defaultValue) override;

private:
    qe::SettingsReader mReader;
};

#endif
