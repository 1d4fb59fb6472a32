#include "Toolkit/Answers/AnswerJson.h"

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Answers/RiskJson.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace qe::tool {

using Json = nlohmann::ordered_json;

Json IdsToJson(std::span<const amd_id> ids)
{
    Json list = Json::array();
    for (const amd_id& id : ids)
        list.push_back(ToText(id));
    return list;
}

Json NamesToJson(const Answer& answer, std::span<const amd_id> subjects)
{
    Json list = Json::array();
    for (const amd_id& subject : subjects)
        list.push_back(answer.NameOf(subject));
    return list;
}

namespace {

using Ids = std::vector<amd_id>;

template <typename T>
Json OrNull(const std::optional<T>& value)
{
    return value ? Json(*value) : Json();
}

Json ToJson(const Answer& answer, const AnswerJoin& join)
{
    return {{"id", ToText(join.id)},
            {"name", join.name},
            {"kind", JoinKindTitle(join.id)},
            {"left", answer.NameOf(join.left)},
            {"leftCardinality", ToText(join.leftCardinality)},
            {"right", answer.NameOf(join.right)},
            {"rightCardinality", ToText(join.rightCardinality)},
            {"condition", join.condition},
            {"weight", join.weight}};
}

Json ToJson(const Alternative& alternative)
{
    Json json{{"joins", IdsToJson(alternative.joins)}};
    for (const RankingCriterion& criterion : GetRankingCriteria()) {
        for (const PathFigure& figure : criterion.figures)
            json[std::string(figure.key)] = OrNull(figure.get(alternative));
    }
    json["rank"] = OrNull(alternative.rank);
    return json;
}

Json ToJson(const std::vector<AnswerMessage>& messages)
{
    Json list = Json::array();
    for (const AnswerMessage& message : messages) {
        std::array<char, 16> number{};
        std::snprintf(number.data(), number.size(), "0x%08X", message.number);
        list.push_back({{"number", number.data()}, {"text", message.text}});
    }
    return list;
}

Json ToJson(const std::vector<AnswerDecision>& decisions)
{
    Json list = Json::array();
    for (const AnswerDecision& decision : decisions)
        list.push_back({{"subjects", decision.subjects},
                        {"prefer", decision.preferred},
                        {"avoid", decision.avoided},
                        {"reason", decision.reason}});
    return list;
}

Json ToJson(const std::optional<AnswerError>& error)
{
    if (!error)
        return {};
    const bool isReported = error->kind == AnswerError::EKind::Reported;
    return {{"kind", isReported ? "reported" : "internal"},
            {"severity", error->severity},
            {"code", error->code},
            {"messages", ToJson(error->messages)},
            {"text", error->text}};
}

Json JoinsToJson(const Answer& answer, std::size_t alternatives)
{
    const Ids& path = GetAnsweredPath(answer);
    std::set<amd_id> mentioned(path.begin(), path.end());
    for (std::size_t index = 0; index < alternatives; ++index) {
        const Ids& joins = answer.alternatives[index].joins;
        mentioned.insert(joins.begin(), joins.end());
    }
    Json list = Json::array();
    for (const amd_id& id : mentioned) {
        if (const AnswerJoin* const join = answer.FindJoin(id))
            list.push_back(ToJson(answer, *join));
    }
    return list;
}

Json AlternativesToJson(const Answer& answer, std::size_t count)
{
    Json list = Json::array();
    for (std::size_t index = 0; index < count; ++index)
        list.push_back(ToJson(answer.alternatives[index]));
    return list;
}

Json SeparationToJson(const Answer& answer)
{
    Json groups = Json::array();
    for (const Ids& group : answer.separation.groups)
        groups.push_back(NamesToJson(answer, group));
    return groups;
}

Json EndPairsToJson(const Answer& answer)
{
    Json pairs = Json::array();
    for (const auto& pair : answer.endPairs)
        pairs.push_back(NamesToJson(answer, std::array{pair.first, pair.second}));
    return pairs;
}

Json SettingsToJson(const Question& question)
{
    Json settings = Json::object();
    for (const Setting& setting : question.settings)
        settings[setting.section + '/' + setting.key] = setting.value;
    return settings;
}

} // namespace

Json ToJson(const Question& question, const Answer& answer, const Risks& risks,
            ListLimit alternatives)
{
    const std::size_t shown = alternatives.CountShown(answer.alternatives.size());
    return {{"version", kAnswerVersion},
            {"operation", ToText(question.operation)},
            {"subjects", NamesToJson(answer, answer.terminals)},
            {"secondSet", NamesToJson(answer, answer.secondSet)},
            {"governors",
             {{"crossProductAllowed", answer.governors.crossProductAllowed},
              {"shortcutGrouping", answer.governors.shortcutGrouping}}},
            {"settings", SettingsToJson(question)},
            {"connected", answer.connected},
            {"weight", OrNull(answer.weight)},
            {"path", IdsToJson(answer.path)},
            {"criterion", answer.criterion.empty() ? Json() : Json(answer.criterion)},
            {"chosen", OrNull(answer.chosen)},
            {"mainObject",
             answer.mainObject.IsValid() ? Json(answer.NameOf(answer.mainObject)) : Json()},
            {"candidates", answer.alternatives.size()},
            {"alternatives", AlternativesToJson(answer, shown)},
            {"joins", JoinsToJson(answer, shown)},
            {"endPairs", EndPairsToJson(answer)},
            {"joinedSubjects", NamesToJson(answer, answer.joinedSubjects)},
            {"groups", SeparationToJson(answer)},
            {"bridge", NamesToJson(answer, answer.separation.bridge)},
            {"decisions", ToJson(answer.decisions)},
            {"risks", ToJson(answer, risks)},
            {"warnings", ToJson(answer.warnings)},
            {"notices", answer.notices},
            {"error", ToJson(answer.error)}};
}

} // namespace qe::tool
