#include "Tests/Fuzz/FuzzTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

namespace qe::test {

void PrintTo(const FuzzTarget& target, std::ostream* out)
{
    *out << target.name;
}

namespace {

class Corpus : public testing::TestWithParam<FuzzTarget>
{};

/// What fuzzing starts from, and what it once found, holds in every build.
TEST_P(Corpus, KeepsThePromises)
{
    const auto folder =
        std::filesystem::path(QEREFINER_SOURCE_DIR) / "Tests/Fuzz/Corpus" / GetParam().name;
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(GetParam().findFault(bytes), "");
        for (std::size_t size = 0; size < bytes.size(); size += 1 + bytes.size() / 64)
            EXPECT_EQ(GetParam().findFault(bytes.substr(0, size)), "") << "cut to " << size;
        ++count;
    }
    EXPECT_GT(count, 0U);
}

INSTANTIATE_TEST_SUITE_P(All, Corpus, testing::ValuesIn(ListFuzzTargets()), [](const auto& entry) {
    std::string name(entry.param.name);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace

} // namespace qe::test
