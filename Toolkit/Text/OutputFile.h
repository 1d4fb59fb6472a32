#ifndef TOOLKIT_TEXT_OUTPUTFILE_H
#define TOOLKIT_TEXT_OUTPUTFILE_H

#include <filesystem>
#include <string_view>

namespace qe::tool {

/// Makes the file hold exactly these bytes, or leaves it as it was. The bytes are written to a new
/// file in the same folder, which takes the place of the old one, with its permissions, once they
/// are on the disk. A symbolic link stays, what it leads to is replaced. A device or a pipe is
/// written to as it is. Throws an InputError, with the path as its place, when that fails; nothing
/// is left behind then. Signals wait until the file is there.
void WriteFileWhole(const std::filesystem::path& path, std::string_view text);

} // namespace qe::tool

#endif
