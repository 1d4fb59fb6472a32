#ifndef PLATFORM_AUT_I_USERCONFIGURATION_H
#define PLATFORM_AUT_I_USERCONFIGURATION_H

#include "AUT_RefPtr.h"
#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

/// The settings under which a part of the configuration is kept.
enum ERootKey
{
    /// The user's own settings.
    RootKeyUser = 1,
};

/// Reads the user's settings.
class QEENGINE_EXPORT AUT_I_UserConfiguration
{
public:
    virtual ~AUT_I_UserConfiguration();

    /// Opens the settings under a root key.
    [[nodiscard]] static AUT_RefPtr<AUT_I_UserConfiguration> Create(ERootKey rootKey);

    /// Returns the setting, or `defaultValue` when it is not set, is no number, or the settings
    /// cannot be read.
    [[nodiscard]] virtual int GetInt(const I18NString& section, const I18NString& key,
                                     int defaultValue) = 0;
};

#endif
