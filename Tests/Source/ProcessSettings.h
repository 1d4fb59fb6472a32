#ifndef TESTS_SOURCE_PROCESSSETTINGS_H
#define TESTS_SOURCE_PROCESSSETTINGS_H

#include <gtest/gtest.h>

namespace qe::test {

/// Why a case is skipped that reads "FFJoins" or "AdjustWeightByFolder" with a value of its own:
/// both are read once in the life of a process, so that cases which run together would see the
/// value of the first.
inline constexpr const char* kNeedsOwnProcess =
    "sets what a process reads once: run this case by itself, as ctest does";

/// Returns whether other cases run in this process, before or after.
inline bool RunsWithOtherCases()
{
    return testing::UnitTest::GetInstance()->test_to_run_count() > 1;
}

} // namespace qe::test

#endif
