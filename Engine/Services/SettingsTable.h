#ifndef ENGINE_SERVICES_SETTINGSTABLE_H
#define ENGINE_SERVICES_SETTINGSTABLE_H

#include "Engine/Services/SettingsProblem.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe {

/// Section and key of a setting, in the one spelling that MakeSettingName gives them.
using SettingName = std::pair<std::string, std::string>;

/// Returns the name of a setting. Upper and lower case of the letters A to Z make no difference.
[[nodiscard]] SettingName MakeSettingName(std::string_view section, std::string_view key);

/// The contents of one settings file: the settings that hold, and what is wrong with the rest.
struct SettingsTable
{
    std::map<SettingName, int> values;
    std::vector<SettingsProblem> problems;

    [[nodiscard]] std::optional<int> Find(const SettingName& name) const;
};

/// Returns what a text says: sections in brackets, "key = value" or "key: value" lines with whole
/// numbers, and comments behind ';' (also '#' at the start of a line). Of repeated keys the last
/// one holds. What is malformed is left out and recorded, with `path` as the file's name; the rest
/// holds. Keys below a malformed section line are left out with it.
[[nodiscard]] SettingsTable ParseSettings(std::string_view text, const std::string& path);

} // namespace qe

#endif
