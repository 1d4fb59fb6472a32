#ifndef TESTS_TOOLS_MODELFOLDER_H
#define TESTS_TOOLS_MODELFOLDER_H

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace qe::test {

/// A folder for the files of one test, gone with it.
class ModelFolder
{
public:
    ModelFolder()
        : mPath(std::filesystem::temp_directory_path() / ("qerefine-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(mPath);
    }
    ModelFolder(const ModelFolder&) = delete;
    ModelFolder& operator=(const ModelFolder&) = delete;
    ~ModelFolder() { std::filesystem::remove_all(mPath); }

    /// Writes a file and gives its path.
    std::filesystem::path Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(mPath / name, std::ios::binary) << text;
        return mPath / name;
    }
    [[nodiscard]] const std::filesystem::path& GetPath() const { return mPath; }

private:
    std::filesystem::path mPath;
};

} // namespace qe::test

#endif
