#include "Tests/Support/JoinGraphModel.h"

#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "Engine/Model/ModelBuilder.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

namespace qe::test {

namespace {

/// What "x=A-B:5" says; a node that stands alone is its left end.
struct Word
{
    explicit Word(const std::string& text)
        : written(text.substr(0, text.find(':'))),
          name(written.substr(0, written.find('='))),
          weight(written == text ? "" : text.substr(written.size() + 1))
    {
        const std::string ends = name == written ? name : written.substr(name.size() + 1);
        const std::size_t separator = ends.find_first_of("->");
        left = ends.substr(0, separator);
        if (separator != std::string::npos)
            right = ends.substr(separator + 1);
        isShortcut = separator != std::string::npos && ends[separator] == '>';
    }
    [[nodiscard]] bool IsJoin() const { return !isShortcut && !right.empty(); }

    std::string written;
    std::string name;
    std::string weight;
    std::string left;
    std::string right;
    bool isShortcut = false;
};

std::vector<Word> ReadWords(std::string_view text)
{
    std::vector<Word> words;
    for (const std::string& word : SplitList(text, ' '))
        words.emplace_back(word);
    return words;
}

std::shared_ptr<const model::Model> Build(const std::vector<Word>& words)
{
    std::set<std::string> nodes;
    std::map<std::string, std::string> targets;
    for (const Word& word : words) {
        nodes.insert(word.left);
        if (!word.right.empty())
            nodes.insert(word.right);
        if (word.isShortcut)
            targets[word.left] = word.right;
    }
    model::ModelBuilder builder;
    for (const std::string& node : nodes) {
        if (targets.count(node) == 0)
            builder.AddQuerySubject(model::kTop, node);
        else
            builder.AddShortcut(model::kTop, node, {targets[node]});
    }
    for (const Word& word : words) {
        if (word.IsJoin())
            builder.AddRelationship(model::kTop, word.name, {word.left},
                                    {word.right, model::kOneToMany});
    }
    return builder.Build();
}

} // namespace

JoinGraphModel::JoinGraphModel(std::string_view text) : ModelText(Build(ReadWords(text)))
{
    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    const Ids joins = Joins();
    auto join = joins.begin();
    for (const Word& word : ReadWords(text)) {
        if (!word.IsJoin())
            continue;
        AQE_I_Refiner::QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(&GetGateway(), nullptr, *join++, info) &&
            !word.weight.empty()) {
            info.weight = std::stoi(word.weight);
            context.GetJoinCache()->CacheJoinInfo(info.joinId, info);
        }
    }
}

JoinGraphModel::Ids JoinGraphModel::operator[](std::string_view names) const
{
    Ids ids;
    for (const std::string& name : SplitList(names, ' '))
        ids.push_back(Id(name));
    return ids;
}

std::string JoinGraphModel::Text(const Ids& ids) const
{
    std::string text;
    for (const amd_id& id : ids)
        text += (text.empty() ? "" : " ") + Name(id);
    return text;
}

std::vector<std::string> JoinGraphModel::Texts(const std::vector<Ids>& lists) const
{
    std::vector<std::string> texts(lists.size());
    std::transform(lists.begin(), lists.end(), texts.begin(),
                   [this](const Ids& ids) { return Text(ids); });
    return texts;
}

} // namespace qe::test
