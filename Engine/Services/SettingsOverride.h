#ifndef ENGINE_SERVICES_SETTINGSOVERRIDE_H
#define ENGINE_SERVICES_SETTINGSOVERRIDE_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

#include <functional>
#include <optional>

namespace qe {

/// Returns a setting another value for the whole process, whatever the settings file says. An
/// object does so while it lives and then restores what was set before; objects for one setting
/// are destroyed in the reverse order of their making.
///
/// A setting is looked for among the values set here, then at the host's provider, then in the
/// file. Names are compared without regard to the case of A to Z. Safe to use from any thread.
class QEENGINE_EXPORT SettingsOverride
{
public:
    SettingsOverride(const I18NString& section, const I18NString& key, int value);
    SettingsOverride(const SettingsOverride&) = delete;
    SettingsOverride& operator=(const SettingsOverride&) = delete;
    ~SettingsOverride();

    /// Sets a value until it is cleared or set again.
    static void Set(const I18NString& section, const I18NString& key, int value);
    /// Takes back what was set, if anything was.
    static void Clear(const I18NString& section, const I18NString& key);

    /// Returns the value of a setting, or nothing to leave it to the settings file. It is called on
    /// the threads that read settings, several at a time, and what it throws reaches the reader;
    /// only the log, which reads its own level, counts a failure as "off".
    using Provider =
        std::function<std::optional<int>(const I18NString& section, const I18NString& key)>;

    /// Installs the host's provider, an empty one for none, and returns the one before. A call of
    /// the one before may still be under way on another thread.
    static Provider SetProvider(Provider provider);

    /// Returns what the host says about a setting: the value that is set here, else the
    /// provider's; nothing when it leaves the setting to the file.
    [[nodiscard]] static std::optional<int> Find(const I18NString& section, const I18NString& key);

private:
    I18NString mSection;
    I18NString mKey;
    std::optional<int> mEarlier;
};

} // namespace qe

#endif
