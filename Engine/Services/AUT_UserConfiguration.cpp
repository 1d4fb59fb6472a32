#include "Engine/Services/AUT_UserConfiguration.h"

#include "Engine/Services/SettingsFile.h"

AUT_UserConfiguration::AUT_UserConfiguration() : mReader(qe::SettingsFile::Get().GetTable())
{
    mReader.ReportProblems();
}

int AUT_UserConfiguration::GetInt(const I18NString& section, const I18NString& key,
                                  int defaultValue)
{
    return mReader.GetInt(section, key, defaultValue);
}

AUT_RefPtr<AUT_I_UserConfiguration> AUT_I_UserConfiguration::Create(ERootKey /*rootKey*/)
{
    return AUT_RefPtr<AUT_I_UserConfiguration>(new AUT_UserConfiguration);
}
