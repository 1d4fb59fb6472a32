#include "AUT_I_UserConfiguration.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsFile.h"
#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

namespace {

using qe::SettingsOverride;
using testing::ElementsAre;
using testing::HasSubstr;

class SettingsTest : public testing::Test
{
protected:
    SettingsTest() { ::setenv("QEREFINER_SETTINGS", mPath.c_str(), 1); }
    ~SettingsTest() override { SettingsOverride::SetProvider(nullptr); }

    static int Read(const char* key, const char* section = "General Options", int otherwise = -7)
    {
        return AUT_I_UserConfiguration::Create(RootKeyUser)->GetInt(section, key, otherwise);
    }

    void Write(std::string_view text) const { mFolder.Write("settings.ini", text); }

    qe::test::TemporaryFolder mFolder;
    const std::string mPath = mFolder / "settings.ini";
};

/// What the settings of the malformed file below read as; -7 where they are left out.
constexpr struct
{
    const char* section;
    const char* key;
    int value;
} kReadCases[] = {
    {"General Options", "FFJoins", 3},
    {"general options", "ffjoins", 3},
    {"General Options", "Indented", 5},
    {"General Options", "Small", std::numeric_limits<int>::min()},
    {"General Options", "Word", -7},
    {"General Options", "Fraction", -7},
    {"General Options", "Big", -7},
    {"General Options", "Signs", -7},
    {"General Options", "Empty", -7},
    {"General Options", "", -7},
    {"General Options", "NewAlgo", 1},
    {"Broken", "NewAlgo", -7},
    {"", "NewAlgo", -7},
    {"Log", "Last", 9},
    {"Log", "FFJoins", -7},
};

TEST_F(SettingsTest, MalformedLinesAreLeftOutAndTheRestHolds)
{
    Write("\xEF\xBB\xBF; comment\r\n"
          "[General Options]\r\n"
          "  FFJoins = 2 ; inline\r\n"
          "    Indented: +5\n"
          "# comment " +
          std::string(300, '=') +
          "\n"
          "FFJOINS = 3\n"
          "no value here\n"
          "Word = three\n"
          "Fraction = 1.5\n"
          "Big = 2147483648\n"
          "Small = -2147483648\n"
          "Signs = +-5\n"
          "Empty =\n"
          "= 3\n" +
          "FFJoins = 4 ; " + std::string(184, 'x') + "FFJoins = 5\n" +
          std::string("FFJoins = 7\0 1\n", 15) +
          "NEWALGO = 1\n"
          "[Broken\n"
          "NewAlgo = 0\n"
          "[Log]\n\n"
          "Last = 9");
    for (const auto& test : kReadCases)
        EXPECT_EQ(Read(test.key, test.section), test.value) << test.section << '/' << test.key;

    std::vector<int> lines;
    for (const qe::SettingsProblem& problem : qe::GetSettingsProblems()) {
        EXPECT_EQ(problem.path, mPath);
        lines.push_back(problem.line);
    }
    EXPECT_THAT(lines, ElementsAre(7, 8, 9, 10, 12, 13, 14, 15, 16, 18));
    EXPECT_EQ(ToText(qe::GetSettingsProblems()[1]),
              mPath + ":8: the value of \"Word\" is not a whole number that fits: \"three\"");
}

TEST_F(SettingsTest, ProblemsAreLoggedOnce)
{
    Write("[Log]\nFirst = x\n");
    EXPECT_EQ(Read("First", "Log"), -7); // nobody sees this one: the log is off
    const qe::LogCapture capture(1);
    Read("First", "Log");
    Read("First", "Log");
    Write("[Log]\nFirst = x\nSecond\n");
    Read("First", "Log");
    const std::vector<qe::LogEntry> entries = capture.GetEntries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_THAT(entries[0].text.ToStdString(), HasSubstr(mPath + ":2: "));
    EXPECT_THAT(entries[1].text.ToStdString(), HasSubstr(mPath + ":3: "));
}

TEST_F(SettingsTest, FileThatComesChangesAndGoesIsNoticed)
{
    EXPECT_EQ(Read("NewAlgo"), -7);
    EXPECT_TRUE(qe::GetSettingsProblems().empty());
    Write("[General Options]\nNewAlgo=0\n");
    const auto opened = AUT_I_UserConfiguration::Create(RootKeyUser);
    EXPECT_EQ(Read("NewAlgo"), 0);
    Write("[General Options]\nNewAlgo=10\n");
    EXPECT_EQ(Read("NewAlgo"), 10);
    EXPECT_EQ(opened->GetInt("General Options", "NewAlgo", -7), 0);
    std::filesystem::remove(mPath);
    EXPECT_EQ(Read("NewAlgo"), -7);
}

TEST_F(SettingsTest, UnusableFileMeansDefaultsAndIsReported)
{
    std::filesystem::create_directory(mPath);
    EXPECT_EQ(Read("NewAlgo"), -7);
    EXPECT_THAT(qe::GetSettingsProblems(),
                ElementsAre(qe::SettingsProblem{mPath, 0, "not a regular file"}));
    std::filesystem::remove(mPath);
    const std::string lines(2 << 20, '\n');
    Write(lines + "[General Options]\nNewAlgo=0\n");
    EXPECT_EQ(Read("NewAlgo"), -7);
    EXPECT_EQ(qe::GetSettingsProblems().size(), 1U);
}

TEST_F(SettingsTest, PathComesFromTheFirstVariableThatIsSet)
{
    const struct
    {
        const char* settings;
        const char* configuration;
        const char* home;
        const char* path;
    } cases[] = {
        {"/a.ini", "/c", "/h", "/a.ini"},
        {"", "/c", "/h", "/c/qerefiner/settings.ini"},
        {"", "", "/h", "/h/.config/qerefiner/settings.ini"},
        {"", "", "", ""},
    };
    for (const auto& test : cases) {
        ::setenv("QEREFINER_SETTINGS", test.settings, 1);
        ::setenv("XDG_CONFIG_HOME", test.configuration, 1);
        ::setenv("HOME", test.home, 1);
        EXPECT_EQ(qe::FindSettingsPath(), test.path);
        EXPECT_EQ(Read("NewAlgo"), -7);
    }
}

TEST_F(SettingsTest, HostsValuesComeBeforeTheProviderAndBothBeforeTheFile)
{
    Write("[General Options]\nFFJoins=1\n");
    const auto earlier =
        SettingsOverride::SetProvider([](const I18NString& section, const I18NString& key) {
            return section == "General Options" && key == "FFJoins" ? std::optional<int>(2)
                                                                    : std::nullopt;
        });
    EXPECT_FALSE(earlier);
    EXPECT_EQ(Read("FFJoins"), 2);
    EXPECT_EQ(Read("NewAlgo"), -7);
    SettingsOverride::Set("General Options", "FFJoins", 3);
    {
        const SettingsOverride outer("general options", "ffjoins", 4);
        const SettingsOverride inner("General Options", "FFJoins", 5);
        const SettingsOverride other("General Options", "NewAlgo", 6);
        EXPECT_EQ(Read("FFJoins"), 5);
        EXPECT_EQ(Read("NewAlgo"), 6);
    }
    EXPECT_EQ(Read("FFJoins"), 3);
    EXPECT_EQ(Read("NewAlgo"), -7);
    SettingsOverride::Clear("General Options", "FFJoins");
    EXPECT_EQ(Read("FFJoins"), 2);
    EXPECT_TRUE(SettingsOverride::SetProvider(nullptr));
    EXPECT_EQ(Read("FFJoins"), 1);
}

TEST_F(SettingsTest, ThreadsSeeOneStateOrTheOther)
{
    const std::string one = "[General Options]\nFFJoins=1\n";
    Write(one);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 300; ++round) {
                const int value = Read("FFJoins");
                EXPECT_TRUE(value == 1 || value == 22) << value;
            }
        });
    }
    for (int round = 0; round < 300; ++round)
        const SettingsOverride change("General Options", "FFJoins", 22);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
