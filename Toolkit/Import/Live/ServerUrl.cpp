#include "Toolkit/Import/Live/ServerUrl.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstddef>

namespace qe::tool {

namespace {

constexpr std::string_view kAfterScheme = "://";

/// The parts of a URL as they are written.
struct RawUrl
{
    std::string_view scheme{};
    std::string_view user{};
    std::string_view hosts{};
    std::string_view database{};
    std::string_view parameters{};
};

/// Takes what stands before the first of the marks out of the text, with the mark.
std::string_view TakeBefore(std::string_view& text, std::string_view marks)
{
    const std::size_t end = std::min(text.find_first_of(marks), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

RawUrl SplitUrl(std::string_view text)
{
    RawUrl url;
    const std::size_t scheme = std::min(text.find(kAfterScheme), text.size());
    url.scheme = text.substr(0, scheme);
    text.remove_prefix(std::min(scheme + kAfterScheme.size(), text.size()));
    // A password may hold any sign, so that the last "@" counts: nothing before it is ever shown.
    if (const std::size_t end = text.rfind('@'); end != std::string_view::npos) {
        url.user = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    const std::size_t parameters = std::min(text.find('?'), text.size());
    url.parameters = text.substr(std::min(parameters + 1, text.size()));
    text = text.substr(0, parameters);
    url.hosts = TakeBefore(text, "/");
    url.database = text;
    return url;
}

int HexValue(char digit)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t value = kDigits.find(ascii::ToLower(digit));
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

std::string Decode(std::string_view text, const std::string& place)
{
    constexpr int kHexBase = 16;
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? HexValue(text[i + 2]) : -1;
        if (high < 0 || low < 0 || (high == 0 && low == 0))
            throw InputError({{place, "\"%\" stands before two hexadecimal digits, as in %20"}});
        decoded += static_cast<char>(high * kHexBase + low);
        i += 2;
    }
    return decoded;
}

/// Adds a host and its port, such as "db:5433" or "[::1]".
void AddHost(std::string_view text, ServerUrl& url, const std::string& place)
{
    std::string_view host;
    if (text.starts_with('[')) {
        host = text.substr(1, text.find(']') - 1);
        text.remove_prefix(std::min(host.size() + 2, text.size()));
        if (!text.empty() && text.front() != ':')
            throw InputError({{place, "an address in brackets is followed by \":\" and a port"}});
        text.remove_prefix(std::min<std::size_t>(text.size(), 1));
    } else {
        host = TakeBefore(text, ":");
    }
    constexpr std::size_t kLongestPort = 5;
    if (text.size() > kLongestPort || !std::all_of(text.begin(), text.end(), ascii::IsDigit))
        throw InputError({{place, "the port is not a number"}});
    url.hosts += Decode(host, place);
    url.ports += text;
}

void AddHosts(std::string_view text, ServerUrl& url, const std::string& place)
{
    if (text.empty())
        return;
    AddHost(TakeBefore(text, ","), url, place);
    while (!text.empty()) {
        url.hosts += ',';
        url.ports += ',';
        AddHost(TakeBefore(text, ","), url, place);
    }
    if (url.ports.find_first_not_of(',') == std::string::npos)
        url.ports.clear();
}

/// Returns whether the parameter holds what nobody is to see.
bool IsSecret(const std::string& name)
{
    const std::string folded = ascii::ToLower(name);
    return folded.ends_with("password") || folded.ends_with("secret") || folded == "pwd";
}

void AddParameters(std::string_view text, ServerUrl& url, const std::string& place)
{
    while (!text.empty()) {
        std::string_view value = TakeBefore(text, "&");
        const std::string name = Decode(TakeBefore(value, "="), place);
        if (IsSecret(name))
            RefusePassword(place);
        url.parameters.emplace_back(name, Decode(value, place));
    }
}

} // namespace

void RefusePassword(const std::string& place)
{
    throw InputError({{place, "holds a password: others can read command lines, so passwords come "
                              "from the environment or a password file"}});
}

ServerUrl ParseServerUrl(std::string_view text)
{
    const std::string place = ToShownUrl(text);
    const RawUrl raw = SplitUrl(text);
    if (raw.user.find_first_of("/?") != std::string_view::npos)
        throw InputError({{place, "only a user stands before \"@\"; elsewhere it is written %40"}});
    if (raw.user.find(':') != std::string_view::npos)
        RefusePassword(place);
    ServerUrl url;
    url.scheme = ascii::ToLower(std::string(raw.scheme));
    url.user = Decode(raw.user, place);
    AddHosts(raw.hosts, url, place);
    url.database = Decode(raw.database, place);
    AddParameters(raw.parameters, url, place);
    return url;
}

std::string ToShownUrl(std::string_view text)
{
    const RawUrl raw = SplitUrl(text);
    std::string shown(raw.scheme);
    shown += kAfterScheme;
    shown += raw.hosts;
    if (!raw.database.empty())
        shown.append("/").append(raw.database);
    return shown;
}

} // namespace qe::tool
