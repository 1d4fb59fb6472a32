#include "Toolkit/Text/OutputFile.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Toolkit/Text/InputFile.h"

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>

namespace qe::tool {
namespace {

namespace fs = std::filesystem;

std::size_t CountFiles(const fs::path& folder)
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder))
        ++count;
    return count;
}

class OutputFileTest : public testing::Test
{
protected:
    [[nodiscard]] fs::path Path(const std::string& name) const { return mFolder / name; }

    test::TemporaryFolder mFolder;
};

TEST_F(OutputFileTest, ReplacesTheTextAndKeepsPermissionsAndLinks)
{
    WriteFileWhole(Path("model.json"), "old and long");
    fs::permissions(Path("model.json"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("model.json", Path("link"));
    fs::create_symlink("link", Path("link to the link"));

    WriteFileWhole(Path("link to the link"), "new");

    EXPECT_EQ(ReadInputFile(Path("model.json")), "new");
    EXPECT_TRUE(fs::is_symlink(Path("link to the link")));
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(fs::status(Path("model.json")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(CountFiles(Path("")), 3U);
}

/// Lets the process write only short files, as on a disk that is full.
class ShortFiles
{
public:
    explicit ShortFiles(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limit{.rlim_cur = bytes, .rlim_max = mBefore.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        mHandler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ShortFiles(const ShortFiles&) = delete;
    ShortFiles& operator=(const ShortFiles&) = delete;
    ~ShortFiles()
    {
        ::setrlimit(RLIMIT_FSIZE, &mBefore);
        static_cast<void>(std::signal(SIGXFSZ, mHandler));
    }

private:
    rlimit mBefore{};
    void (*mHandler)(int) = nullptr;
};

TEST_F(OutputFileTest, AFailureLeavesTheOldFileAndNothingElse)
{
    WriteFileWhole(Path("model.json"), "old");
    {
        const ShortFiles full(1000);
        EXPECT_THROW(WriteFileWhole(Path("model.json"), std::string(5000, 'x')), InputError);
    }
    EXPECT_EQ(ReadInputFile(Path("model.json")), "old");
    EXPECT_EQ(CountFiles(Path("")), 1U);

    EXPECT_THROW(WriteFileWhole(Path(""), "x"), InputError);
    EXPECT_THROW(WriteFileWhole(Path("no such folder") / "model.json", "x"), InputError);
    EXPECT_EQ(CountFiles(Path("")), 1U);
}

TEST_F(OutputFileTest, ADeviceIsWrittenToAndStays)
{
    WriteFileWhole("/dev/null", "x");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    try {
        WriteFileWhole("/dev/full", "x");
        ADD_FAILURE() << "the device is full";
    } catch (const InputError& error) {
        EXPECT_STREQ(error.what(), "/dev/full: cannot be written: No space left on device");
    }
}

} // namespace
} // namespace qe::tool
