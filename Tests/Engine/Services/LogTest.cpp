#include "AQE_LogFile.h"
#include "AUT_I_UserConfiguration.h"
#include "AUT_LogException.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace {

using qe::LogCapture;
using qe::LogEntry;
using qe::SettingsOverride;

std::vector<std::string> GetTexts(const LogCapture& capture)
{
    std::vector<std::string> texts;
    for (const LogEntry& entry : capture.GetEntries())
        texts.push_back(entry.text.ToStdString());
    return texts;
}

class LogTest : public testing::Test
{
protected:
    LogTest()
    {
        ::setenv("QEREFINER_SETTINGS", "/nonexistent", 1);
        ::setenv("QEREFINER_LOG", (mFolder / "log").c_str(), 1);
    }
    ~LogTest() override { SettingsOverride::SetProvider(nullptr); }

    qe::test::TemporaryFolder mFolder;
};

TEST_F(LogTest, NothingIsWrittenUntilALevelIsSet)
{
    AQE_LogFile log("QueryEngine");
    EXPECT_EQ(log.GetLogLevel(), 0);
    log.Log(1, "lost");
    log.Log(0, "lost");
    EXPECT_EQ(mFolder.Read("log"), "");
}

TEST_F(LogTest, LevelFollowsTheSettingsFileWhenTheConfigurationIsOpened)
{
    EXPECT_EQ(AQE_LogFile("Q").GetLogLevel(), 0);
    const std::string settings = mFolder.Write("settings.ini", "[Log]\nLevel=4\n");
    ::setenv("QEREFINER_SETTINGS", settings.c_str(), 1);
    EXPECT_EQ(AUT_I_UserConfiguration::Create(RootKeyUser)->GetInt("Log", "Level", 0), 4);
    EXPECT_EQ(AQE_LogFile("Q").GetLogLevel(), 4);
}

TEST_F(LogTest, FileHoldsNameLevelTitleAndTextOfWantedEntries)
{
    const SettingsOverride level("Log", "Level", 7);
    AQE_LogFile log("QueryEngine");
    EXPECT_EQ(log.GetLogLevel(), 7);
    log.Log(7, "one\ntwo\n");
    log.Log(8, "too fine");
    AQE_LogFile("QueryEngine", 5, 0xA9E143D7, 0x1B, "Joins").Log(5, "no line end");
    EXPECT_EQ(mFolder.Read("log"), "--- QueryEngine, level 7\none\ntwo\n"
                                   "--- QueryEngine, level 5, Joins (0xA9E143D7, 0x0000001B)\n"
                                   "no line end\n");
}

TEST_F(LogTest, StandardErrorStandsInForTheFile)
{
    const SettingsOverride level("Log", "Level", 1);
    for (const char* const path : {"", "-", "stderr", "/nonexistent/folder/log"}) {
        ::setenv("QEREFINER_LOG", path, 1);
        testing::internal::CaptureStderr();
        AQE_LogFile("Q").Log(1, "text");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "--- Q, level 1\ntext\n") << path;
    }
}

TEST_F(LogTest, CaptureTakesEntriesAsTheyStandInPlaceOfTheFile)
{
    const SettingsOverride level("Log", "Level", 3);
    const LogCapture capture(11);
    AQE_LogFile("Name", 11, 1, 2, "Title").Log(11, "\ntext");
    AQE_LogFile("Name").Log(12, "too fine");
    const std::vector<LogEntry> entries = capture.GetEntries();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].title, "Title");
    EXPECT_EQ(entries[0].text, "\ntext");
    EXPECT_EQ(mFolder.Read("log"), "");
}

TEST_F(LogTest, InnermostCaptureCountsAndLateEntriesAreDropped)
{
    const LogCapture outer(5);
    AQE_LogFile early("Q");
    auto inner = std::make_unique<LogCapture>(0);
    EXPECT_EQ(AQE_LogFile("Q").GetLogLevel(), 0);
    inner = nullptr;
    std::vector<std::string> seen;
    inner = std::make_unique<LogCapture>(
        9, [&seen](const LogEntry& entry) { seen.push_back(entry.text.ToStdString()); });
    AQE_LogFile late("Q");
    late.Log(9, "inner");
    early.Log(5, "outer");
    inner = nullptr;
    late.Log(1, "nobody");
    AQE_LogFile("Q").Log(5, "outer again");
    EXPECT_THAT(seen, testing::ElementsAre("inner"));
    EXPECT_THAT(GetTexts(outer), testing::ElementsAre("outer", "outer again"));
}

TEST_F(LogTest, CapturesMayLetOthersReceiveTooEachUpToItsOwnLevel)
{
    const SettingsOverride level("Log", "Level", 2);
    std::vector<std::string> seen;
    const auto note = [&seen](const LogEntry& entry) { seen.push_back(entry.text.ToStdString()); };
    const auto write = [] {
        AQE_LogFile log("Q");
        for (int wanted = 1; wanted <= log.GetLogLevel(); ++wanted)
            log.Log(wanted, std::to_string(wanted));
    };
    const LogCapture beside(1, note, LogCapture::EOthers::AlsoReceive);
    write();
    EXPECT_THAT(seen, testing::ElementsAre("1"));
    EXPECT_EQ(mFolder.Read("log"), "--- Q, level 1\n1\n--- Q, level 2\n2\n");
    const LogCapture alone(3);
    {
        const LogCapture inner(4, note, LogCapture::EOthers::AlsoReceive);
        write();
    }
    EXPECT_THAT(GetTexts(alone), testing::ElementsAre("1", "2", "3"));
    EXPECT_THAT(seen, testing::ElementsAre("1", "1", "2", "3", "4"));
    EXPECT_EQ(mFolder.Read("log"), "--- Q, level 1\n1\n--- Q, level 2\n2\n");
}

TEST_F(LogTest, SinkMayWriteToTheLogAndItsFailureReachesTheWriter)
{
    std::vector<std::string> texts;
    const LogCapture capture(2, [&texts](const LogEntry& entry) {
        texts.push_back(entry.text.ToStdString());
        if (entry.level == 1)
            throw std::runtime_error("full");
        AQE_LogFile("Q").Log(1, "nested");
    });
    AQE_LogFile log("Q");
    EXPECT_THROW(log.Log(2, "text"), std::runtime_error);
    EXPECT_THAT(texts, testing::ElementsAre("text", "nested"));
}

TEST_F(LogTest, SettingsThatFailSwitchTheLogOff)
{
    SettingsOverride::SetProvider([](const I18NString&, const I18NString&) -> std::optional<int> {
        throw std::runtime_error("no settings");
    });
    EXPECT_EQ(AQE_LogFile("Q").GetLogLevel(), 0);
}

TEST_F(LogTest, ExceptionIsLoggedWithItsPlaceAndMessage)
{
    HBNException exception(1, -1);
    HBNAddMessages(exception, 0xA9E12896, 0, "", "", "", "", "", "");
    const LogCapture capture(1);
    AUT_LogException(exception, "Source/QEFactFinder", 141);
    AUT_LogException(HBNException(2, 3), nullptr, 4);
    EXPECT_THAT(GetTexts(capture),
                testing::ElementsAre("Source/QEFactFinder:141: Severity 1, code -1: A many-to-many "
                                     "join cannot tell facts from dimensions.\n",
                                     "?:4: Severity 2, code 3\n"));
    EXPECT_EQ(capture.GetEntries()[0].message, 0xA9E12896);
}

TEST_F(LogTest, EntriesOfManyThreadsAllArriveWhole)
{
    const LogCapture capture(1);
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 200; ++round)
                AQE_LogFile("Q").Log(1, "abc");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(GetTexts(capture), std::vector<std::string>(600, "abc"));
}

} // namespace
