#include "Toolkit/Import/Live/OdbcText.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Live/ServerUrl.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/TextEdges.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qe::tool {

namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

/// Returns where the attribute ends: at the first semicolon outside of braces.
std::size_t FindEnd(std::string_view text)
{
    bool isInBraces = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '{' || text[i] == '}')
            isInBraces = text[i] == '{';
        else if (text[i] == ';' && !isInBraces)
            return i;
    }
    return text.size();
}

/// Returns the attributes; what has no "=" has no value.
Attributes SplitAttributes(std::string_view url)
{
    if (ascii::ToLower(std::string(url.substr(0, kOdbcScheme.size()))) == kOdbcScheme)
        url.remove_prefix(kOdbcScheme.size());
    Attributes attributes;
    while (!url.empty()) {
        const std::size_t end = FindEnd(url);
        const std::string_view one = url.substr(0, end);
        const std::size_t equals = std::min(one.find('='), one.size());
        if (std::string name(Trim(one.substr(0, equals))); !name.empty() || equals < one.size())
            attributes.emplace_back(std::move(name),
                                    Trim(one.substr(std::min(equals + 1, one.size()))));
        url.remove_prefix(std::min(end + 1, url.size()));
    }
    return attributes;
}

} // namespace

Attributes ParseOdbcUrl(std::string_view url)
{
    const std::string place = ToShownOdbcUrl(url);
    Attributes attributes = SplitAttributes(url);
    if (attributes.empty())
        throw InputError({{place, "names no driver or data source, as in "
                                  "odbc:Driver=SQLite3;Database=shop.db"}});
    for (const auto& [name, value] : attributes) {
        const std::string folded = ascii::ToLower(name);
        if (folded == "pwd" || folded.ends_with("password"))
            RefusePassword(place);
        if (name.empty() || value.empty())
            throw InputError({{place, "has an attribute without a name or a value"}});
    }
    return attributes;
}

std::string ToShownOdbcUrl(std::string_view url)
{
    constexpr std::array<std::string_view, 5> kShown{"driver", "dsn", "server", "servername",
                                                     "database"};
    std::string shown(kOdbcScheme);
    for (const auto& [name, value] : SplitAttributes(url)) {
        if (std::find(kShown.begin(), kShown.end(), ascii::ToLower(name)) == kShown.end())
            continue;
        shown += shown.size() == kOdbcScheme.size() ? "" : ";";
        shown.append(name).append("=").append(value);
    }
    return shown;
}

} // namespace qe::tool
