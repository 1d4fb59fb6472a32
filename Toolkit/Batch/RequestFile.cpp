#include "Toolkit/Batch/RequestFile.h"

#include "Toolkit/Text/InputFile.h"

#include <filesystem>
#include <system_error>

namespace qe::tool {

RequestFile::RequestFile(const std::string& name, std::istream& standardInput)
    : mInput(&standardInput)
{
    if (name == "-")
        return;
    mFile = OpenInputFile(name);
    mInput = &mFile;
    std::error_code noSize;
    const auto size = std::filesystem::file_size(name, noSize);
    mSize = noSize ? 0 : size;
}

} // namespace qe::tool
