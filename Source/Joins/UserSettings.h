#ifndef SOURCE_JOINS_USERSETTINGS_H
#define SOURCE_JOINS_USERSETTINGS_H

/// The settings of the user that the refiner goes by. All are numbers; what cannot be read has its
/// default. They are read through AUT_I_UserConfiguration, whose exceptions pass through.
namespace qe::settings {

/// A setting as the configuration knows it.
struct UserSetting
{
    const char* section = "";
    const char* key = "";
    int defaultValue = 0;
};

/// How joins of different kinds weigh against each other, and which paths are the best ones. Read
/// when it is first asked for, once in the life of the process.
inline constexpr UserSetting kFFJoins{"General Options", "FFJoins", 3};
/// The value of "FFJoins" that means the default weights and, where the best paths are wanted, all
/// candidates.
inline constexpr int kFFJoinsAllCandidates = 3;

/// Whether joins that are kept far from what they join are heavier. Read when paths are first
/// weighed, once in the life of the process.
inline constexpr UserSetting kAdjustWeightByFolder{"General Options", "AdjustWeightByFolder", 0};

/// Whether all trees of least weight are searched at once instead of merging shortest paths. Read
/// for every join tree.
inline constexpr UserSetting kNewAlgo{"General Options", "NewAlgo", 1};

/// Whether the cheapest-trees search leaves subjects that it cannot connect to the caller, without
/// a warning or an error. Read when it has found no tree.
inline constexpr UserSetting kDoNotApplyCrossProductGovernor{"QueryEngine",
                                                             "DoNotApplyCrossProductGovernor", 0};

/// Returns the value of "FFJoins". Two first callers at once may both read it, with the same
/// result.
[[nodiscard]] int GetFFJoins();

/// Returns whether "AdjustWeightByFolder" is on. First callers at once may all read it, and have
/// the same result. A configuration that fails to answer is not asked again: the setting is then
/// off.
[[nodiscard]] bool IsAdjustWeightByFolderOn();

[[nodiscard]] bool IsNewAlgoOn();

[[nodiscard]] bool IsDoNotApplyCrossProductGovernorOn();

} // namespace qe::settings

#endif
