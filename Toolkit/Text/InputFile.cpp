#include "Toolkit/Text/InputFile.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace qe::tool {
namespace {

std::string ToLine(const InputProblem& problem)
{
    return (problem.place.empty() ? problem.text : problem.place + ": " + problem.text) +
           ToHint(problem.nearestNames);
}

} // namespace

std::string ToHint(const std::vector<std::string>& nearestNames)
{
    // More names than these are no hint.
    constexpr std::size_t kShown = 3;
    std::string hint;
    for (std::size_t i = 0; i < nearestNames.size() && i < kShown; ++i)
        hint += (i == 0 ? " (did you mean " : " or ") + nearestNames[i];
    return hint.empty() ? hint : hint + "?)";
}

InputError::InputError(std::vector<InputProblem> problems) : mProblems(std::move(problems))
{
    for (const InputProblem& problem : mProblems) {
        if (!mText.empty())
            mText += '\n';
        mText += ToLine(problem);
    }
}

namespace {

[[noreturn]] void Reject(const std::filesystem::path& path, const std::string& text)
{
    throw InputError({{path.string(), text}});
}

/// Reads until the end of the file, or until there are more than `count` bytes.
std::string Read(const std::filesystem::path& path, std::uintmax_t count)
{
    std::ifstream stream = OpenInputFile(path);
    std::string text;
    std::array<char, 65536> block{};
    while (text.size() <= count && (stream.read(block.data(), block.size()) || stream.gcount() > 0))
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    if (!stream.eof() && text.size() <= count)
        Reject(path, "cannot be read: " + std::generic_category().message(errno));
    return text;
}

} // namespace

std::ifstream OpenInputFile(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        Reject(path, "there is no such file");
    if (status.type() == std::filesystem::file_type::directory)
        Reject(path, "is a folder, not a file");
    if (status.type() == std::filesystem::file_type::none)
        Reject(path, "cannot be read: " + error.message());
    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        Reject(path, "cannot be read: " + std::generic_category().message(errno));
    return stream;
}

std::string ReadInputFile(const std::filesystem::path& path, std::uintmax_t maximumSize)
{
    std::string text = Read(path, maximumSize);
    if (text.size() > maximumSize)
        Reject(path, "is too large: more than " + std::to_string(maximumSize) + " bytes");
    return text;
}

std::string ReadInputStart(const std::filesystem::path& path, std::size_t count)
{
    return Read(path, count).substr(0, count);
}

} // namespace qe::tool
