#ifndef ENGINE_SERVICES_SETTINGSPROBLEM_H
#define ENGINE_SERVICES_SETTINGSPROBLEM_H

#include "QEENGINE_EXPORT.h"

#include <string>
#include <utility>
#include <vector>

namespace qe {

/// A line of the settings file that had to be left out.
struct SettingsProblem
{
    std::string path;
    /// Counted from 1; 0 when it is the file as a whole that cannot be used.
    int line = 0;
    std::string text;

    friend bool operator==(const SettingsProblem&, const SettingsProblem&) = default;
};

/// Returns the problem as "path:line: text".
[[nodiscard]] QEENGINE_EXPORT std::string ToText(const SettingsProblem& problem);

/// Returns what is wrong with the user's settings file as it is now, in the order of its lines;
/// nothing when there is no file.
[[nodiscard]] QEENGINE_EXPORT std::vector<SettingsProblem> GetSettingsProblems();

/// Returns section and key of all that the user's settings file sets, in lower case and in order,
/// whether or not anything reads it.
[[nodiscard]] QEENGINE_EXPORT std::vector<std::pair<std::string, std::string>> GetSettingsInFile();

} // namespace qe

#endif
