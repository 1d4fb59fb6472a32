#include "Toolkit/Ask/SettingNames.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Engine/Services/SettingsProblem.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace qe::tool {

namespace {

/// Returns the text behind the slash of a name.
std::string_view KeyOf(std::string_view name)
{
    return name.substr(name.find('/') + 1);
}

/// Returns the names whose keys are nearest to that of a wrong one, whatever their sections.
std::vector<std::string> FindNearest(std::string_view name)
{
    std::vector<std::string_view> keys;
    keys.reserve(kSettingNames.size());
    for (const std::string_view known : kSettingNames)
        keys.push_back(KeyOf(known));
    std::vector<std::string> nearest;
    for (const std::string& key : model::NearestNames(KeyOf(name), keys, 1)) {
        for (const std::string_view known : kSettingNames) {
            if (KeyOf(known) == key)
                nearest.emplace_back(known);
        }
    }
    return nearest;
}

} // namespace

void CheckSettingName(const std::string& place, const std::string& name)
{
    const bool isKnown =
        std::any_of(kSettingNames.begin(), kSettingNames.end(), [&](std::string_view known) {
            return ascii::ToLower(std::string(known)) == ascii::ToLower(name);
        });
    if (!isKnown)
        throw InputError({{place, "There is no setting \"" + name + '"', FindNearest(name)}});
}

void CheckSettingsFile()
{
    const char* const named = std::getenv("QEREFINER_SETTINGS");
    const std::string path = named == nullptr ? "" : named;
    std::error_code failure;
    if (!path.empty() && !std::filesystem::exists(path, failure))
        throw InputError({{"QEREFINER_SETTINGS", "there is no such file: " + path}});
    for (const SettingsProblem& problem : GetSettingsProblems()) {
        if (problem.line == 0)
            throw InputError({{problem.path, problem.text}});
    }
    const std::string place = path.empty() ? "settings.ini" : path;
    for (const auto& [section, key] : GetSettingsInFile())
        CheckSettingName(place, std::string(section).append("/").append(key));
}

} // namespace qe::tool
