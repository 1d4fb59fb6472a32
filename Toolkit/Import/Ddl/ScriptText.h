#ifndef TOOLKIT_IMPORT_DDL_SCRIPTTEXT_H
#define TOOLKIT_IMPORT_DDL_SCRIPTTEXT_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A script in UTF-8 without a byte order mark.
struct ScriptText
{
    std::filesystem::path path{};
    std::string text{};
    /// What had to be guessed about its letters, one sentence each.
    std::vector<std::string> notes{};
};

/// Returns the script that the bytes of a file are. UTF-16 that begins with a byte order mark is
/// converted; bytes that are no UTF-8 count as letters of Latin-1, which is noted. Throws an
/// InputError when there is a zero byte.
[[nodiscard]] ScriptText MakeScriptText(const std::filesystem::path& path, std::string bytes);

/// Returns the script that a file holds. Throws an InputError like MakeScriptText, and when the
/// file cannot be read or is too large.
[[nodiscard]] ScriptText ReadScriptText(const std::filesystem::path& path);

/// Returns whether a file that starts so can be a script.
[[nodiscard]] bool IsScriptStart(std::string_view start);

/// Returns "file:line:column" of a byte of the script, both counted from 1.
[[nodiscard]] std::string DescribePlace(const ScriptText& script, std::size_t offset);

} // namespace qe::tool

#endif
