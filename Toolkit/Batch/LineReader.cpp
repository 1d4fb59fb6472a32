#include "Toolkit/Batch/LineReader.h"

#include "Toolkit/Text/InputFile.h"

#include <filesystem>
#include <ios>
#include <system_error>

namespace qe::tool {

bool LineReader::Next(RequestLine& line)
{
    try {
        while (Read(line)) {
            if (line.isTooLong || line.text.find_first_not_of(" \t\r") != std::string::npos)
                return true;
        }
        return false;
    } catch (const std::ios_base::failure& failure) {
        throw InputError({{"requests", "cannot be read: " + failure.code().message()}});
    }
}

bool LineReader::Read(RequestLine& line)
{
    line = {};
    constexpr int kEnd = std::char_traits<char>::eof();
    std::streambuf& buffer = *mInput.rdbuf();
    int letter = buffer.sbumpc();
    if (letter == kEnd)
        return false;
    for (; letter != kEnd; letter = buffer.sbumpc()) {
        ++mBytes;
        if (letter == '\n')
            break;
        if (line.text.size() == mLongest) {
            line.isTooLong = true;
            line.text.clear();
        }
        if (!line.isTooLong)
            line.text += static_cast<char>(letter);
    }
    line.number = ++mLines;
    line.bytes = mBytes;
    return true;
}

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
