#ifndef TOOLKIT_IMPORT_LIVE_SERVERURL_H
#define TOOLKIT_IMPORT_LIVE_SERVERURL_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

/// The parts of a URL such as "postgresql://ann@db.example:5433/shop?sslmode=require".
struct ServerUrl
{
    std::string scheme{};
    std::string user{};
    /// Several have commas between them; empty for the usual one. Without the brackets of IPv6.
    std::string hosts{};
    /// As many as hosts, with commas between them; empty for the usual ones.
    std::string ports{};
    std::string database{};
    /// In the order in which they stand.
    std::vector<std::pair<std::string, std::string>> parameters{};
};

/// Returns the parts, "%XX" replaced by what it stands for. Throws an InputError when the text is
/// no such URL, or when it holds a password, which no message shows.
[[nodiscard]] ServerUrl ParseServerUrl(std::string_view text);

/// Returns the URL without its user and its parameters.
[[nodiscard]] std::string ToShownUrl(std::string_view text);

/// Throws an InputError that says where passwords belong.
[[noreturn]] void RefusePassword(const std::string& place);

} // namespace qe::tool

#endif
