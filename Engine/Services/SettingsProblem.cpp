#include "Engine/Services/SettingsProblem.h"

#include "Engine/Services/SettingsFile.h"

namespace qe {

std::string ToText(const SettingsProblem& problem)
{
    std::string place = problem.path;
    if (problem.line != 0)
        place += ':' + std::to_string(problem.line);
    return place + ": " + problem.text;
}

std::vector<SettingsProblem> GetSettingsProblems()
{
    return SettingsFile::Get().GetTable()->problems;
}

} // namespace qe
