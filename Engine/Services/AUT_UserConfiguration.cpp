#include "AQE_LogFile.h"
#include "AUT_I_UserConfiguration.h"
#include "Engine/Services/MessageCatalogue.h"
#include "Engine/Services/SettingsFile.h"
#include "QERes.h"

#include <memory>

namespace {

/// The user's settings: those of the host, else those of the settings file as it was when the
/// object was made. All root keys lead to the same ones.
class AUT_UserConfiguration final : public AUT_I_UserConfiguration
{
public:
    AUT_UserConfiguration() : mTable(qe::SettingsFile::Get().GetTable()) { ReportProblems(); }

    [[nodiscard]] int GetInt(const I18NString& section, const I18NString& key,
                             int defaultValue) override
    {
        return qe::ReadSetting(*mTable, section, key, defaultValue);
    }

private:
    /// Writes those problems of the file to the log that are not there yet.
    void ReportProblems() const
    {
        constexpr int kLevel = 1;
        if (mTable->problems.empty())
            return;
        AQE_LogFile log(QERes::getString(qe::kLogNameText), kLevel, 0, 0, "Settings");
        if (log.GetLogLevel() < kLevel)
            return;
        for (const qe::SettingsProblem& problem :
             qe::SettingsFile::Get().TakeUnreported(mTable->problems))
            log.Log(kLevel, ToText(problem) + '\n');
    }

    std::shared_ptr<const qe::SettingsTable> mTable;
};

} // namespace

// Defined here, so that all modules share one virtual table and one type description.
AUT_I_UserConfiguration::~AUT_I_UserConfiguration() = default;

AUT_RefPtr<AUT_I_UserConfiguration> AUT_I_UserConfiguration::Create(ERootKey /*rootKey*/)
{
    return AUT_RefPtr<AUT_I_UserConfiguration>(new AUT_UserConfiguration);
}
