#include "Engine/Services/SettingsReader.h"

#include "AQE_LogFile.h"
#include "Engine/Services/SettingsFile.h"
#include "Engine/Services/SettingsRegistry.h"
#include "QERes.h"

#include <utility>

namespace qe {
namespace {

constexpr int problemLevel = 1;

} // namespace

SettingsReader::SettingsReader(std::shared_ptr<const SettingsTable> table)
    : mTable(std::move(table))
{}

int SettingsReader::GetInt(const I18NString& section, const I18NString& key, int defaultValue) const
{
    if (const std::optional<int> value = SettingsRegistry::Get().Find(section, key))
        return *value;
    if (mTable->values.empty())
        return defaultValue;
    return mTable->Find(MakeSettingName(section.View(), key.View())).value_or(defaultValue);
}

void SettingsReader::ReportProblems() const
{
    if (mTable->problems.empty())
        return;
    AQE_LogFile log(QERes::getString(340), problemLevel, 0, 0, "Settings");
    if (log.GetLogLevel() < problemLevel)
        return;
    for (const SettingsProblem& problem : SettingsFile::Get().TakeUnreported(mTable->problems))
        log.Log(problemLevel, ToText(problem) + '\n');
}

} // namespace qe
