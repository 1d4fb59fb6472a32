#ifndef TOOLKIT_ASK_SETTING_H
#define TOOLKIT_ASK_SETTING_H

#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// One user setting, such as "General Options/NewAlgo=0".
struct Setting
{
    std::string section{};
    std::string key{};
    int value = 0;
};

/// Reads "Section/Key=value". Throws InputError for any other text.
[[nodiscard]] Setting ParseSetting(std::string_view text);

/// Writes the setting as ParseSetting reads it.
[[nodiscard]] std::string ToText(const Setting& setting);

/// Sets the values for the whole process. The library reads some settings once and keeps what it
/// read, so this is done before the first question and not again.
void ApplySettings(const std::vector<Setting>& settings);

} // namespace qe::tool

#endif
