#ifndef TOOLKIT_BATCH_LINEREADER_H
#define TOOLKIT_BATCH_LINEREADER_H

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <string>

namespace qe::tool {

/// One line of a file of requests.
struct RequestLine
{
    /// Counted from 1, empty lines included.
    std::size_t number = 0;
    /// Without its end; empty when it is too long.
    std::string text{};
    bool isTooLong = false;
    /// How much of the input lies before the end of this line.
    std::uint64_t bytes = 0;
};

/// Reads lines without ever holding more than `longest` bytes of one. Lines of white space are
/// passed over.
class LineReader
{
public:
    /// Refers to the input.
    LineReader(std::istream& input, std::size_t longest) : mInput(input), mLongest(longest) {}

    /// Replaces `line` by the next one; false at the end of the input. Throws InputError where it
    /// cannot be read.
    [[nodiscard]] bool Next(RequestLine& line);

private:
    [[nodiscard]] bool Read(RequestLine& line);

    std::istream& mInput;
    std::size_t mLongest;
    std::size_t mLines = 0;
    std::uint64_t mBytes = 0;
};

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
