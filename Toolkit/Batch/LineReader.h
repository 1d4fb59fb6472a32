#ifndef TOOLKIT_BATCH_LINEREADER_H
#define TOOLKIT_BATCH_LINEREADER_H

#include <cstddef>
#include <cstdint>
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

    /// Replaces `line` by the next one; false at the end of the input.
    [[nodiscard]] bool Next(RequestLine& line);

private:
    [[nodiscard]] bool Read(RequestLine& line);

    std::istream& mInput;
    std::size_t mLongest;
    std::size_t mLines = 0;
    std::uint64_t mBytes = 0;
};

} // namespace qe::tool

#endif
