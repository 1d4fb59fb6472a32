#include "Toolkit/Ask/Question.h"

#include "Engine/Services/SettingsOverride.h"
#include "Toolkit/Ask/SettingNames.h"
#include "Toolkit/Text/InputFile.h"

#include <charconv>
#include <system_error>

namespace qe::tool {

std::string_view ToText(EOperation operation)
{
    switch (operation) {
    case EOperation::Path:
        return "path";
    case EOperation::BestPaths:
        return "best";
    case EOperation::JoinedSubjects:
        return "subjects";
    case EOperation::PathBetween:
        return "between";
    case EOperation::BestPathsBetween:
        return "best between";
    case EOperation::TreeJoins:
        return "tree";
    }
    return "";
}

Setting ParseSetting(std::string_view text)
{
    const std::size_t slash = text.find('/');
    const std::size_t equal = text.find('=', slash == std::string_view::npos ? 0 : slash);
    Setting setting;
    if (slash != std::string_view::npos && equal != std::string_view::npos) {
        setting.section = text.substr(0, slash);
        setting.key = text.substr(slash + 1, equal - slash - 1);
        const char* const end = text.data() + text.size();
        const auto [stop, failure] = std::from_chars(text.data() + equal + 1, end, setting.value);
        if (failure == std::errc() && stop == end && !setting.section.empty() &&
            !setting.key.empty()) {
            CheckSettingName("--set", setting.section + '/' + setting.key);
            return setting;
        }
    }
    throw InputError({{"--set", "A setting is written as \"Section/Key=number\", not as \"" +
                                    std::string(text) + '"'}});
}

std::string ToText(const Setting& setting)
{
    return setting.section + '/' + setting.key + '=' + std::to_string(setting.value);
}

void ApplySettings(const std::vector<Setting>& settings)
{
    CheckSettingsFile();
    for (const Setting& setting : settings)
        SettingsOverride::Set(setting.section, setting.key, setting.value);
}

} // namespace qe::tool
