#ifndef TOOLKIT_ASK_SETTINGNAMES_H
#define TOOLKIT_ASK_SETTINGNAMES_H

#include <array>
#include <string>
#include <string_view>

namespace qe::tool {

/// All user settings that anything reads, as settings.md lists them.
inline constexpr std::array<std::string_view, 9> kSettingNames{
    "General Options/NewAlgo",
    "General Options/FFJoins",
    "General Options/AdjustWeightByFolder",
    "QueryEngine/DoNotApplyCrossProductGovernor",
    "JoinGraph/CheapestTreesBound",
    "JoinGraph/CheapestTreesEffort",
    "JoinGraph/CheapestTreesMegabytes",
    "JoinGraph/CheapestTreesSeconds",
    "Log/Level",
};

/// Throws an InputError under `place`, with the nearest right names, unless there is a setting of
/// that name, "Section/Key". The case of A to Z does not count.
void CheckSettingName(const std::string& place, const std::string& name);

/// Throws an InputError when the environment names a settings file that is not there, when the
/// settings file cannot be read, or when it sets what nothing reads.
void CheckSettingsFile();

} // namespace qe::tool

#endif
