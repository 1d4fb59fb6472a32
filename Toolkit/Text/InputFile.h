#ifndef TOOLKIT_TEXT_INPUTFILE_H
#define TOOLKIT_TEXT_INPUTFILE_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace qe::tool {

/// What programs may want to do about a mistake.
enum class EMistake : std::uint8_t
{
    /// Nothing but tell it.
    Other,
    /// Nothing has the name; the nearest names are proposals.
    UnknownName,
    /// Several objects have the name; the nearest names tell them apart.
    AmbiguousName,
};

/// One mistake in what the user gave.
struct InputProblem
{
    /// Where it is: "model.json:12:7" for syntax, "model.json#/subjects/3/name" for content,
    /// "--set" for an argument.
    std::string place;
    /// One sentence, fixed text first, names and values last.
    std::string text;
    /// Where a name was wrong: the nearest right ones, best first.
    std::vector<std::string> nearestNames{};
    EMistake mistake = EMistake::Other;
};

/// Returns " (did you mean X or Y?)" with the first three names; empty where there are none.
[[nodiscard]] std::string ToHint(const std::vector<std::string>& nearestNames);

/// All mistakes in one input. Nothing of that input is used.
class InputError : public std::exception
{
public:
    explicit InputError(std::vector<InputProblem> problems);

    [[nodiscard]] const std::vector<InputProblem>& GetProblems() const noexcept
    {
        return mProblems;
    }

    /// Returns one line for each problem: "place: text (did you mean X or Y?)", with at most three
    /// names.
    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }

private:
    std::vector<InputProblem> mProblems;
    std::string mText;
};

/// The largest file that is read where no other size is given, in bytes.
inline constexpr std::uintmax_t kMaximumFileSize = std::uintmax_t{64} * 1024 * 1024;

/// Opens a file to read it piece by piece. Throws an InputError when there is no such file, or when
/// it is a folder or cannot be opened. Pipes can be read.
[[nodiscard]] std::ifstream OpenInputFile(const std::filesystem::path& path);

/// Returns what the file holds, byte by byte. Throws an InputError like OpenInputFile, and when the
/// file holds more than `maximumSize` bytes or cannot be read.
[[nodiscard]] std::string ReadInputFile(const std::filesystem::path& path,
                                        std::uintmax_t maximumSize = kMaximumFileSize);

/// Returns the first bytes of the file, at most `count`, however large the file is. Throws an
/// InputError like ReadInputFile.
[[nodiscard]] std::string ReadInputStart(const std::filesystem::path& path, std::size_t count);

} // namespace qe::tool

#endif
