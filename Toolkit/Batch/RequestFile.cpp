#include "Toolkit/Batch/RequestFile.h"

#include "Toolkit/Text/InputError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace qe::tool {

RequestFile::RequestFile(const std::string& name, std::istream& standardInput)
    : mInput(&standardInput)
{
    if (name == "-")
        return;
    mInput = &mFile;
    mFile.open(name, std::ios::binary);
    // A folder can be opened, but not read.
    if (!mFile || std::filesystem::is_directory(name))
        throw InputError({InputProblem{name, std::string("the requests cannot be read: ") +
                                                 std::strerror(mFile ? EISDIR : errno)}});
    std::error_code noSize;
    const auto size = std::filesystem::file_size(name, noSize);
    mSize = noSize ? 0 : size;
}

} // namespace qe::tool
