#ifndef TOOLKIT_BATCH_REQUESTFILE_H
#define TOOLKIT_BATCH_REQUESTFILE_H

#include <cstdint>
#include <fstream>
#include <istream>
#include <string>

namespace qe::tool {

/// A file of requests, or standard input.
class RequestFile
{
public:
    /// Opens the file of that name; "-" stands for the standard input, which is referred to. Throws
    /// InputError when the file cannot be read.
    RequestFile(const std::string& name, std::istream& standardInput);

    [[nodiscard]] std::istream& Get() { return *mInput; }
    /// Returns the size in bytes; 0 when it is not known.
    [[nodiscard]] std::uint64_t GetSize() const { return mSize; }

private:
    std::ifstream mFile;
    std::istream* mInput;
    std::uint64_t mSize = 0;
};

} // namespace qe::tool

#endif
