#ifndef TOOLKIT_TEXT_INPUTFILE_H
#define TOOLKIT_TEXT_INPUTFILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace qe::tool {

/// Larger input files are refused.
inline constexpr std::uintmax_t MaximumFileSize = std::uintmax_t{64} * 1024 * 1024;

/// Gives what the file holds, byte by byte. Raises an InputError when there is no such file, when
/// it is a folder, too large or cannot be read. Pipes can be read.
[[nodiscard]] std::string ReadInputFile(const std::filesystem::path& path);

/// Gives the first bytes of the file, at most `count`, however large the file is. Raises the same.
[[nodiscard]] std::string ReadInputStart(const std::filesystem::path& path, std::size_t count);

} // namespace qe::tool

#endif
