#include "Tests/Support/GraphText.h"

#include <cstdint>
#include <sstream>

namespace qe::test {

namespace {

constexpr std::int32_t kNodeClass = 100;
constexpr std::int32_t kEdgeClass = 102;

} // namespace

GraphText::GraphText(std::string_view text)
{
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        const std::size_t dash = word.find('-');
        const std::size_t colon = word.find(':');
        if (dash == std::string::npos) {
            mGraph->AddNode(NameNode(word));
            continue;
        }
        const amd_id end1 = NameNode(word.substr(0, dash));
        const amd_id end2 = NameNode(word.substr(dash + 1, colon - dash - 1));
        mGraph->AddEdge(NameEdge(word.substr(0, colon)), end1, end2,
                        std::stoi(word.substr(colon + 1)), 0);
    }
}

amd_id GraphText::NameNode(const std::string& name)
{
    const auto number = static_cast<std::int32_t>(mIds.size() + 1);
    const auto [at, isNew] = mIds.try_emplace(name, amd_id(0, kNodeClass, number));
    mNames.emplace(at->second, name);
    return at->second;
}

amd_id GraphText::NameEdge(std::string name)
{
    const std::string first = name;
    for (int count = 2; mIds.contains(name); ++count)
        name = first + '#' + std::to_string(count);
    const amd_id id(0, kEdgeClass, static_cast<std::int32_t>(mIds.size() + 1));
    mIds.emplace(name, id);
    mNames.emplace(id, name);
    return id;
}

amd_id GraphText::Id(const std::string& name) const
{
    const auto at = mIds.find(name);
    return at == mIds.end() ? amd_id(0, kNodeClass, -1) : at->second;
}

std::vector<amd_id> GraphText::Ids(std::string_view names) const
{
    std::istringstream words{std::string(names)};
    std::vector<amd_id> ids;
    for (std::string word; words >> word;)
        ids.push_back(Id(word));
    return ids;
}

std::string GraphText::Write(const std::vector<amd_id>& ids) const
{
    std::string text;
    for (const amd_id& id : ids) {
        const auto at = mNames.find(id);
        text += (text.empty() ? "" : " ") + (at == mNames.end() ? ToText(id) : at->second);
    }
    return text;
}

std::vector<std::string> GraphText::Write(const std::vector<std::vector<amd_id>>& ids) const
{
    std::vector<std::string> texts;
    for (const std::vector<amd_id>& list : ids)
        texts.push_back(Write(list));
    return texts;
}

} // namespace qe::test
