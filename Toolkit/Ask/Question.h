#ifndef TOOLKIT_ASK_QUESTION_H
#define TOOLKIT_ASK_QUESTION_H

#include "AQE_RequestContext.h"
#include "Source/Rules/RankingCriteria.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

struct Answer;

/// What the refiner is asked for.
enum class EOperation : std::uint8_t
{
    /// The joins that connect the subjects.
    Path,
    /// All best paths that connect the subjects.
    BestPaths,
    /// The subjects that the connecting joins touch.
    JoinedSubjects,
    /// One shortest path from a subject of the first set to one of the second.
    PathBetween,
    /// All best shortest paths between the two sets.
    BestPathsBetween,
    /// The joins of a tree of shortest paths that also passes over shortcuts.
    TreeJoins,
};

/// All operations.
inline constexpr std::array kOperations{
    EOperation::Path,        EOperation::BestPaths,        EOperation::JoinedSubjects,
    EOperation::PathBetween, EOperation::BestPathsBetween, EOperation::TreeJoins};

/// Returns the operation's name as requests and answers write it, such as "path".
[[nodiscard]] std::string_view ToText(EOperation operation);

/// Who chooses among the ranked paths.
enum class ESelector : std::uint8_t
{
    /// The best-ranked path is taken.
    First,
    /// Of the paths of least weight, the one that the keys speak for is taken.
    Keys,
    /// The first path with a main object is taken.
    MainObject,
    /// SelectorChoice::choose is asked.
    Ask,
};

/// The words for who chooses. Requests know all but "ask", which takes a user.
inline constexpr std::array<std::pair<std::string_view, ESelector>, 4> kSelectorWords{
    {{"keys", ESelector::Keys},
     {"first", ESelector::First},
     {"main-object", ESelector::MainObject},
     {"ask", ESelector::Ask}}};

/// The words for what a request is for.
inline constexpr std::array<std::pair<std::string_view, AQE_RequestContext::ECommandType>, 4>
    kCommandTypeWords{{{"none", AQE_RequestContext::CommandTypeNone},
                       {"query", AQE_RequestContext::CommandTypeQuery},
                       {"validate", AQE_RequestContext::CommandTypeValidate},
                       {"describe", AQE_RequestContext::CommandTypeDescribe}}};

/// The candidates of a choice; the position that is given must be below their number.
using ChooseAlternative = std::function<std::size_t(const Answer& soFar)>;

struct SelectorChoice
{
    ESelector kind = ESelector::Keys;
    /// Main object: it has no optional ends, and none is reached through one.
    bool checkOptional = false;
    /// Main object: only the subjects of the question may be it.
    bool subjectsAreCandidates = true;
    /// Ask: gets the answer as far as it is known, with all its alternatives.
    ChooseAlternative choose{};
};

/// What the candidate graph leaves out of the model. Empty `only` lists leave everything in.
struct Restriction
{
    std::vector<std::string> onlySubjects{};
    std::vector<std::string> withoutSubjects{};
    std::vector<std::string> onlyJoins{};
    std::vector<std::string> withoutJoins{};
};

/// Values that stand in for the model's governors.
struct GovernorChoice
{
    /// 0 nothing, 1 a warning, 2 an error when subjects cannot be connected.
    std::optional<std::int32_t> crossProduct{};
    /// 0 groups shortcuts by what they stand for, another number by where they are kept.
    std::optional<std::int32_t> grouping{};
};

/// One user setting, such as "General Options/NewAlgo=0".
struct Setting
{
    std::string section{};
    std::string key{};
    int value = 0;
};

/// One question about a model. Objects are named as NameResolver reads names; lists mean what the
/// refiner's lists of the same names mean.
struct Question
{
    EOperation operation = EOperation::Path;
    /// What is to be connected; for two sets, the first.
    std::vector<std::string> subjects{};
    std::vector<std::string> secondSet{};
    std::vector<std::string> favouredJoins{};
    std::vector<std::string> requiredJoins{};
    std::vector<std::string> avoidedJoins{};
    std::vector<std::string> favouredSubjects{};
    Restriction restriction{};
    RankingSwitches ranking{.useFactTableCount = true, .useStraightestPath = false};
    SelectorChoice selector{};
    GovernorChoice governors{};
    AQE_RequestContext::ECommandType commandType = AQE_RequestContext::CommandTypeQuery;
    /// What ApplySettings set for the process: for the record, asking does not set it.
    std::vector<Setting> settings{};
};

/// Returns the setting that "Section/Key=value" stands for. Throws InputError for any other text,
/// and for settings that nothing reads.
[[nodiscard]] Setting ParseSetting(std::string_view text);

/// Returns the setting as ParseSetting reads it.
[[nodiscard]] std::string ToText(const Setting& setting);

/// Sets the values for the whole process. The library reads some settings once and keeps what it
/// read, so this is done before the first question and not again. Throws InputError when the user's
/// settings file cannot be meant as it stands.
void ApplySettings(const std::vector<Setting>& settings);

} // namespace qe::tool

#endif
