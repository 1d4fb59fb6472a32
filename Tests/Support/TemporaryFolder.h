#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace qe::test {

/// A folder of this test process, gone at the end with the files in it.
class TemporaryFolder
{
public:
    TemporaryFolder()
        : mPath(std::filesystem::temp_directory_path() /
                ("qerefiner." + std::to_string(::getpid()) + '.' + std::to_string(++mMade)))
    {
        std::filesystem::create_directory(mPath);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(mPath); }

    /// Returns the path of a file, which need not be there.
    [[nodiscard]] std::string operator/(const std::string& name) const { return mPath / name; }

    /// Writes a file and gives its path.
    std::string Write(const std::string& name, std::string_view text) const
    {
        std::ofstream(mPath / name, std::ios::binary) << text;
        return mPath / name;
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ostringstream text;
        text << std::ifstream(mPath / name, std::ios::binary).rdbuf();
        return text.str();
    }

private:
    /// Keeps the folders of one process apart.
    inline static int mMade = 0;
    std::filesystem::path mPath;
};

} // namespace qe::test

#endif
