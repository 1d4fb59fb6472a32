#include "Engine/Services/SettingsOverride.h"
#include "Engine/Services/SettingsTable.h"
#include "Tests/Engine/Expression/ExpressionInvariants.h"
#include "Tests/Fuzz/FuzzTarget.h"
#include "Tests/Fuzz/RefinerCase.h"
#include "Tests/Fuzz/RefinerRules.h"
#include "Tests/Fuzz/RefinerRun.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace qe::test {

namespace {

std::string FindConditionFault(std::string_view bytes)
{
    return FindBrokenInvariant(std::string(bytes));
}

/// A settings file that is read holds what can be written and read again, and a complaint about
/// every line that it does not hold.
std::string FindSettingsFault(std::string_view bytes)
{
    const SettingsTable table = ParseSettings(bytes, "settings.ini");
    const auto lines = std::count(bytes.begin(), bytes.end(), '\n') + 1;
    int last = 0;
    for (const SettingsProblem& problem : table.problems) {
        if (problem.line <= last || problem.line > lines)
            return "a problem has no line of its own";
        last = problem.line;
        if (problem.text.empty() || problem.text.find('\n') != std::string::npos)
            return "a problem is not told in one line";
    }
    std::string written;
    for (const auto& [name, value] : table.values) {
        written += name.first.empty() ? "" : "[" + name.first + "]\n";
        written += name.second + '=' + std::to_string(value) + '\n';
    }
    const SettingsTable again = ParseSettings(written, "settings.ini");
    return again.values == table.values && again.problems.empty()
               ? ""
               : "settings that were written are read as others: " + written;
}

/// Returns what the operations of a request come to, one after the other in one request.
std::vector<RefinerOutcome> Answer(const RefinerCase& input)
{
    RefinerRun run(input);
    std::vector<RefinerOutcome> outcomes;
    for (const ERefinerOperation operation : input.operations)
        outcomes.push_back(run.Do(operation));
    return outcomes;
}

std::string FindRefinerFault(std::string_view bytes)
{
    const RefinerCase input = DecodeRefinerCase(bytes);
    const SettingsOverride newAlgo("General Options", "NewAlgo", int{input.newAlgo});
    const SettingsOverride governor("QueryEngine", "DoNotApplyCrossProductGovernor",
                                    int{input.isGovernorOff});
    const std::vector<RefinerOutcome> outcomes = Answer(input);
    RefinerRun reader(input);
    const RefinerRules rules(input, reader);
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const std::string fault = rules.FindFault(input.operations[i], outcomes[i]);
        if (!fault.empty())
            return "operation " + std::to_string(static_cast<int>(input.operations[i])) + ": " +
                   fault + '\n' + Describe(input);
    }
    if (Answer(input) != outcomes)
        return "the same request has another answer\n" + Describe(input);
    if (Answer(Reorder(input)) != outcomes)
        return "the order of the lists decides\n" + Describe(input);
    return "";
}

/// The modes that a process reads once: the weights of the other one, and the folders of joins.
std::string FindWeighedRefinerFault(std::string_view bytes)
{
    const SettingsOverride ffJoins("General Options", "FFJoins", 1);
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", 1);
    return FindRefinerFault(bytes);
}

constexpr std::array kTargets{
    FuzzTarget{.name = "condition", .findFault = FindConditionFault},
    FuzzTarget{.name = "settings", .findFault = FindSettingsFault},
    FuzzTarget{.name = "refiner", .findFault = FindRefinerFault},
    FuzzTarget{.name = "refiner-weighed", .findFault = FindWeighedRefinerFault},
};

} // namespace

std::span<const FuzzTarget> ListFuzzTargets()
{
    return kTargets;
}

} // namespace qe::test
