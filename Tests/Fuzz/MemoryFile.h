#ifndef TESTS_FUZZ_MEMORYFILE_H
#define TESTS_FUZZ_MEMORYFILE_H

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace qe::test {

/// A file that holds the bytes, in memory alone, for what reads files.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view bytes) : mFile(::memfd_create("input", MFD_CLOEXEC))
    {
        if (mFile < 0 ||
            ::write(mFile, bytes.data(), bytes.size()) != static_cast<::ssize_t>(bytes.size()))
            throw std::runtime_error("no memory for a file");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(mFile); }

    [[nodiscard]] std::filesystem::path GetPath() const
    {
        return "/proc/self/fd/" + std::to_string(mFile);
    }

private:
    int mFile;
};

} // namespace qe::test

#endif
