#ifndef TESTS_ENGINE_SERVICES_TEMPORARYFILE_H
#define TESTS_ENGINE_SERVICES_TEMPORARYFILE_H

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>

/// A file of this test process, removed at the end.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& name)
        : mPath(std::filesystem::temp_directory_path() /
                (name + '.' + std::to_string(::getpid()) + '.' + std::to_string(++mMade)))
    {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::filesystem::remove_all(mPath); }

    void Write(std::string_view text) const
    {
        std::ofstream(mPath, std::ios::binary | std::ios::trunc) << text;
    }

    [[nodiscard]] std::string Read() const
    {
        std::ostringstream text;
        text << std::ifstream(mPath, std::ios::binary).rdbuf();
        return text.str();
    }

    [[nodiscard]] std::string GetPath() const { return mPath.string(); }

private:
    /// Keeps the files of one process apart.
    inline static int mMade = 0;
    std::filesystem::path mPath;
};

#endif
