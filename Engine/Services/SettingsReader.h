#ifndef ENGINE_SERVICES_SETTINGSREADER_H
#define ENGINE_SERVICES_SETTINGSREADER_H

#include "Engine/Services/SettingsTable.h"
#include "I18NString.h"

#include <memory>

namespace qe {

/// Reads settings from the host, and else from the contents of the settings file that the reader
/// was made with.
class SettingsReader
{
public:
    explicit SettingsReader(std::shared_ptr<const SettingsTable> table);

    [[nodiscard]] int GetInt(const I18NString& section, const I18NString& key,
                             int defaultValue) const;

    /// Writes those problems of the file to the log that are not there yet.
    void ReportProblems() const;

private:
    std::shared_ptr<const SettingsTable> mTable;
};

} // namespace qe

#endif
