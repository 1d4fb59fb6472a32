#include "Tests/Support/JoinGraphModel.h"

#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "IdClass.h"

#include <memory>
#include <set>
#include <sstream>

namespace qe::test {

namespace {

std::vector<std::string> SplitWords(std::string_view text)
{
    std::istringstream stream{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/// What stands before and after a separator; everything before it when there is none.
std::pair<std::string, std::string> SplitAt(const std::string& word, char separator)
{
    const std::size_t position = word.find(separator);
    if (position == std::string::npos)
        return {word, {}};
    return {word.substr(0, position), word.substr(position + 1)};
}

bool IsShortcut(const std::string& word)
{
    return word.find('>') != std::string::npos;
}

/// The two ends of "name=A-B:5".
std::pair<std::string, std::string> EndsOf(const std::string& word)
{
    const std::string unnamed =
        word.find('=') == std::string::npos ? word : SplitAt(word, '=').second;
    return SplitAt(SplitAt(unnamed, ':').first, '-');
}

} // namespace

JoinGraphModel::JoinGraphModel(std::string_view text)
{
    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    NumberNodes(text);
    for (const std::string& word : SplitWords(text)) {
        if (IsShortcut(word))
            gateway.AddShortcut(mIds.at(SplitAt(word, '>').first),
                                mIds.at(SplitAt(word, '>').second));
        else if (word.find('-') != std::string::npos)
            AddJoin(word);
    }
}

void JoinGraphModel::NumberNodes(std::string_view text)
{
    std::set<std::string> nodes;
    std::set<std::string> shortcuts;
    for (const std::string& word : SplitWords(text)) {
        const auto [first, second] = IsShortcut(word) ? SplitAt(word, '>') : EndsOf(word);
        if (IsShortcut(word))
            shortcuts.insert(first);
        nodes.insert(first);
        if (!second.empty())
            nodes.insert(second);
    }
    std::int32_t number = 0;
    for (const std::string& node : nodes) {
        const bool isShortcut = shortcuts.count(node) != 0;
        const amd_id id{0, isShortcut ? IdClassShortcut : IdClassQuerySubject, ++number};
        AddName(node, id);
        gateway.AddPlain(id);
        gateway.SetName(id, node);
        mNodes.push_back(id);
    }
}

void JoinGraphModel::AddJoin(std::string_view word)
{
    const auto [ends, weight] = SplitAt(std::string(word), ':');
    const std::string written = SplitAt(ends, '=').first;
    std::string name = written;
    for (int repetition = 2; mIds.count(name) != 0; ++repetition)
        name = written + "#" + std::to_string(repetition);
    const auto [left, right] = EndsOf(std::string(word));
    const amd_id id{0, IdClassRelationship, static_cast<std::int32_t>(mJoins.size() + 1)};
    AddName(name, id);
    gateway.AddRelationship(id, {mIds.at(left), mIds.at(right), name});
    gateway.SetName(id, name);
    mJoins.push_back(id);
    if (weight.empty())
        return;
    AQE_I_Refiner::QEjoinInfo info;
    info.joinId = id;
    info.name = name;
    info.leftQuerySubject = mIds.at(left);
    info.rightQuerySubject = mIds.at(right);
    info.weight = std::stoi(weight);
    info.leftCardinality = info.rightCardinality = {11, 11};
    context.GetJoinCache()->CacheJoinInfo(id, info);
}

void JoinGraphModel::AddName(const std::string& name, const amd_id& id)
{
    mIds[name] = id;
    mNames[id] = name;
}

JoinGraphModel::Ids JoinGraphModel::operator[](std::string_view names) const
{
    Ids ids;
    for (const std::string& name : SplitWords(names))
        ids.push_back(mIds.at(name));
    return ids;
}

std::string JoinGraphModel::Text(const Ids& ids) const
{
    std::string text;
    for (const amd_id& id : ids) {
        const auto found = mNames.find(id);
        text += text.empty() ? "" : " ";
        text += found == mNames.end() ? ToText(id) : found->second;
    }
    return text;
}

std::vector<std::string> JoinGraphModel::Texts(const std::vector<Ids>& lists) const
{
    std::vector<std::string> texts;
    for (const Ids& ids : lists)
        texts.push_back(Text(ids));
    return texts;
}

} // namespace qe::test
