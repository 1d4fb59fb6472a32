#include "Engine/Services/SettingsTable.h"

#include "Engine/Services/Characters.h"

#include <charconv>
#include <cstddef>
#include <ini.h>
#include <system_error>
#include <utility>

namespace qe {
namespace {

/// What the INI reader makes of one line.
struct IniLine
{
    bool isWellFormed = false;
    bool hasSetting = false;
    std::string section;
    std::string key;
    std::string value;
};

int RecordSetting(void* user, const char* section, const char* key, const char* value)
{
    auto& line = *static_cast<IniLine*>(user);
    line.hasSetting = true;
    line.section = section;
    line.key = key;
    line.value = value;
    return 1;
}

/// Reads line by line, because the reader reports only the first malformed line of a text.
IniLine ReadLine(const std::string& text)
{
    IniLine line;
    if (text.size() <= INI_MAX_LINE - 3 && text.find('\0') == std::string::npos)
        line.isWellFormed = ini_parse_string(text.c_str(), RecordSetting, &line) == 0;
    return line;
}

/// Returns the first character that is no space; 0 when there is none.
char FindFirstCharacter(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? '\0' : text[first];
}

std::optional<int> ToInt(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

class SettingsParser
{
public:
    explicit SettingsParser(const std::string& path) : mPath(path) {}

    void Read(const std::string& line)
    {
        ++mLine;
        const char first = FindFirstCharacter(line);
        // The reader would take the end of a long comment for a line of its own.
        if (first == ';' || first == '#')
            return;
        if (first == '[')
            ReadSection(line);
        else
            ReadSetting(line);
    }

    [[nodiscard]] SettingsTable Take() { return std::move(mTable); }

private:
    void ReadSection(const std::string& line)
    {
        // A section shows only with a setting in it.
        const IniLine read = ReadLine(line + "\nkey=0");
        if (read.isWellFormed)
            mSection = read.section;
        else
            mSection.reset();
        if (!read.isWellFormed)
            Complain("the section has no closing bracket, or the line is too long");
    }

    void ReadSetting(const std::string& line)
    {
        const IniLine read = ReadLine(line);
        if (!read.isWellFormed || (read.hasSetting && read.key.empty()))
            return Complain("neither a section, a setting nor a comment");
        if (!read.hasSetting || !mSection)
            return;
        if (const std::optional<int> value = ToInt(read.value))
            mTable.values.insert_or_assign(MakeSettingName(*mSection, read.key), *value);
        else
            Complain("the value of \"" + read.key + "\" is not a whole number that fits: \"" +
                     read.value + '"');
    }

    void Complain(const std::string& text) { mTable.problems.push_back({mPath, mLine, text}); }

    const std::string& mPath;
    int mLine = 0;
    /// Missing below a malformed section line.
    std::optional<std::string> mSection = std::string();
    SettingsTable mTable;
};

} // namespace

std::string ToText(const SettingsProblem& problem)
{
    std::string place = problem.path;
    if (problem.line != 0)
        place += ':' + std::to_string(problem.line);
    return place + ": " + problem.text;
}

SettingName MakeSettingName(std::string_view section, std::string_view key)
{
    return {ascii::ToLower(std::string(section)), ascii::ToLower(std::string(key))};
}

std::optional<int> SettingsTable::Find(const SettingName& name) const
{
    const auto found = values.find(name);
    if (found == values.end())
        return std::nullopt;
    return found->second;
}

SettingsTable ParseSettings(std::string_view text, const std::string& path)
{
    SettingsParser parser(path);
    while (!text.empty()) {
        const std::size_t length = text.find('\n');
        parser.Read(std::string(text.substr(0, length)));
        text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
    }
    return parser.Take();
}

} // namespace qe
