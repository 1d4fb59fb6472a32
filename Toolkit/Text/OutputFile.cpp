#include "Toolkit/Text/OutputFile.h"

#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/SignalBlock.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace qe::tool {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissionBits = 07777;

/// Returns the error of the system call before.
std::error_code LastError()
{
    return {errno, std::generic_category()};
}

/// An open file. It is closed at the end, whatever happens.
class Descriptor
{
public:
    explicit Descriptor(int number) : mNumber(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (mNumber >= 0)
            ::close(mNumber);
    }

    [[nodiscard]] int Get() const { return mNumber; }
    [[nodiscard]] std::error_code Write(std::string_view text) const
    {
        while (!text.empty()) {
            const ssize_t written = ::write(mNumber, text.data(), text.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                return LastError();
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        return {};
    }
    [[nodiscard]] std::error_code Sync() const
    {
        while (::fsync(mNumber) != 0) {
            if (errno != EINTR)
                return LastError();
        }
        return {};
    }
    /// Some file systems tell only here that the disk is full. What is interrupted is closed.
    [[nodiscard]] std::error_code Close()
    {
        const int number = mNumber;
        mNumber = -1;
        return ::close(number) == 0 || errno == EINTR ? std::error_code() : LastError();
    }

private:
    int mNumber;
};

/// Returns what a chain of symbolic links leads to, which need not be there.
fs::path FollowLinks(fs::path path)
{
    constexpr int kMostLinks = 40;
    std::error_code failure;
    for (int i = 0; i < kMostLinks && fs::is_symlink(path, failure); ++i) {
        const fs::path target = fs::read_symlink(path, failure);
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

/// Returns the permissions that the file has, or that a new one gets.
mode_t PermissionsFor(const fs::path& path)
{
    struct stat old = {};
    if (::stat(path.c_str(), &old) == 0)
        return old.st_mode & kPermissionBits;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return kNewFileMode & ~mask;
}

std::error_code WriteInPlace(const fs::path& path, std::string_view text)
{
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.Get() < 0)
        return LastError();
    const std::error_code failure = file.Write(text);
    return failure ? failure : file.Close();
}

/// Writes a new file at a path that ends in six places for a name of its own.
std::error_code WriteBeside(std::string& newPath, std::string_view text, mode_t permissions)
{
    Descriptor file(::mkstemp(newPath.data()));
    if (file.Get() < 0) {
        newPath.clear();
        return LastError();
    }
    if (const std::error_code failure = file.Write(text))
        return failure;
    if (::fchmod(file.Get(), permissions) != 0)
        return LastError();
    const std::error_code failure = file.Sync();
    return failure ? failure : file.Close();
}

/// The new name is to survive a failure of the machine; not every file system can promise that.
void SyncFolder(const fs::path& folder)
{
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Get() >= 0)
        static_cast<void>(opened.Sync());
}

std::error_code Replace(const fs::path& path, std::string_view text)
{
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    // A name of its own, however long that of the file is.
    std::string newPath = (folder / ".qerefine-XXXXXX").string();
    // A signal that ended the process here would leave the new file behind.
    const SignalBlock block;
    std::error_code failure = WriteBeside(newPath, text, PermissionsFor(path));
    if (!failure && ::rename(newPath.c_str(), path.c_str()) != 0)
        failure = LastError();
    if (!failure)
        SyncFolder(folder);
    else if (!newPath.empty())
        ::unlink(newPath.c_str());
    return failure;
}

} // namespace

void WriteFileWhole(const std::filesystem::path& path, std::string_view text)
{
    const fs::path target = FollowLinks(path);
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (fs::is_directory(status))
        throw InputError({{path.string(), "is a folder, not a file"}});
    std::error_code failure;
    if (fs::exists(status) && !fs::is_regular_file(status))
        failure = WriteInPlace(target, text);
    else if (fs::exists(status) && ::access(target.c_str(), W_OK) != 0)
        failure = LastError();
    else
        failure = Replace(target, text);
    if (failure)
        throw InputError({{path.string(), "cannot be written: " + failure.message()}});
}

} // namespace qe::tool
