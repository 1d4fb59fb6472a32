#include "Toolkit/Import/Formats/DbtIndex.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

/// The arguments of a call of "ref" or "source".
struct DbtCall
{
    bool isSource = false;
    std::vector<std::string> names{};
    std::string version{};
};

/// Returns the position of a call of the function; npos for none.
std::size_t FindFunction(std::string_view text, std::string_view function)
{
    std::size_t found = text.find(function);
    while (found != std::string_view::npos && found != 0 && ascii::IsLetter(text[found - 1]))
        found = text.find(function, found + 1);
    return found;
}

void ReadArgument(std::string_view argument, DbtCall& call)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    argument.remove_prefix(std::min(argument.find_first_not_of(kBlanks), argument.size()));
    argument = argument.substr(0, argument.find_last_not_of(kBlanks) + 1);
    std::string* value = nullptr;
    if (const std::size_t equals = argument.find('='); equals != std::string_view::npos) {
        value = &call.version;
        argument.remove_prefix(equals + 1);
    } else {
        value = &call.names.emplace_back();
    }
    for (const char c : argument)
        if (c != '\'' && c != '"')
            *value += c;
}

std::optional<DbtCall> ReadCall(std::string_view text)
{
    constexpr std::string_view kSource = "source(";
    constexpr std::string_view kRef = "ref(";
    DbtCall call;
    std::size_t start = FindFunction(text, kSource);
    call.isSource = start != std::string_view::npos;
    if (!call.isSource)
        start = FindFunction(text, kRef);
    if (start == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(start + (call.isSource ? kSource : kRef).size());
    text = text.substr(0, text.find(')'));
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        ReadArgument(text.substr(0, comma), call);
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return call.names.empty() || call.names.size() > 2 ? std::nullopt : std::optional(call);
}

bool IsMeant(const DbtCall& call, const DbtNode& node)
{
    const std::string& outer = call.names.size() == 2 ? call.names.front() : std::string();
    if (call.isSource)
        return node.sourceName == outer;
    return node.sourceName.empty() && (outer.empty() || node.package == outer) &&
           (call.version.empty() || node.version == call.version);
}

} // namespace

void DbtIndex::Add(const DbtNode& node)
{
    const std::size_t position = mNodes.size();
    mNodes.push_back(node);
    mById.emplace(node.id, position);
    mByName[node.name].push_back(position);
    std::vector<std::string> suffix;
    for (auto part = node.relation.rbegin(); part != node.relation.rend(); ++part) {
        suffix.insert(suffix.begin(), ascii::ToLower(*part));
        mByRelation.emplace(suffix, position);
    }
}

std::optional<std::size_t> DbtIndex::FindId(const std::string& id) const
{
    const auto found = mById.find(id);
    return found == mById.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> DbtIndex::FindCall(std::string_view text,
                                              const std::vector<std::string>& ids) const
{
    const std::optional<DbtCall> call = ReadCall(text);
    const auto named = call ? mByName.find(call->names.back()) : mByName.end();
    if (named == mByName.end())
        return std::nullopt;
    std::optional<std::size_t> best;
    std::pair<bool, bool> bestRank;
    for (const std::size_t position : named->second) {
        const DbtNode& node = mNodes[position];
        if (!IsMeant(*call, node))
            continue;
        const std::pair rank(std::find(ids.begin(), ids.end(), node.id) != ids.end(),
                             node.isLatest);
        if (!best || rank > bestRank) {
            best = position;
            bestRank = rank;
        }
    }
    return best;
}

std::optional<std::size_t> DbtIndex::FindRelation(const std::vector<std::string>& parts) const
{
    std::vector<std::string> folded;
    folded.reserve(parts.size());
    for (const std::string& part : parts)
        folded.push_back(ascii::ToLower(part));
    const auto found = mByRelation.find(folded);
    return found == mByRelation.end() ? std::nullopt : std::optional(found->second);
}

} // namespace qe::tool
