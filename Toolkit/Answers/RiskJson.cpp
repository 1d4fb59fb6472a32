#include "Toolkit/Answers/RiskJson.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Answers/RiskText.h"

#include <string>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;
using Ids = std::vector<amd_id>;

/// Adds the words behind the members that are there.
Json WithWords(Json json, const RiskRemark& remark)
{
    json["text"] = remark.text;
    json["advice"] = remark.advice;
    return json;
}

Json MultipliedToJson(const Answer& answer, const Risks& risks)
{
    Json list = Json::array();
    for (const Multiplied& multiplied : risks.multiplied)
        list.push_back(WithWords(
            {{"reason", ToText(multiplied.reason)},
             {"subjects", NamesToJson(answer, multiplied.subjects)},
             {"by", NamesToJson(answer, multiplied.by)},
             {"at", multiplied.at.IsValid() ? Json(answer.NameOf(multiplied.at)) : Json()},
             {"joins", IdsToJson(multiplied.joins)}},
            Describe(answer, multiplied)));
    return list;
}

Json LostToJson(const Answer& answer, const Risks& risks)
{
    Json list = Json::array();
    for (const Lost& lost : risks.lost)
        list.push_back(WithWords({{"subject", answer.NameOf(lost.subject)},
                                  {"kept", lost.isKept},
                                  {"dimension", lost.isDimension},
                                  {"missing", NamesToJson(answer, lost.missing)},
                                  {"joins", IdsToJson(lost.joins)}},
                                 Describe(answer, risks, lost)));
    return list;
}

Json AmbiguityToJson(const Answer& answer)
{
    if (!answer.ambiguity)
        return {};
    const Ambiguity& ambiguity = *answer.ambiguity;
    Json turns = Json::array();
    for (const Turn& turn : ambiguity.turns)
        turns.push_back({{"alternative", turn.alternative},
                         {"favouredJoins", turn.favoured},
                         {"requiredJoins", turn.required}});
    return WithWords({{"equallyCheap", ambiguity.equallyCheap},
                      {"total", ambiguity.total.empty() ? Json() : Json(ambiguity.total)},
                      {"unproven", ambiguity.isUnproven},
                      {"arbitrary", ambiguity.isArbitrary},
                      {"turns", turns}},
                     DescribeAmbiguity(answer));
}

} // namespace

Json ToJson(const Answer& answer, const Risks& risks)
{
    return {{"rowsOf", NamesToJson(answer, risks.rowsOf)},
            {"multiplied", MultipliedToJson(answer, risks)},
            {"lost", LostToJson(answer, risks)},
            {"outerJoined", NamesToJson(answer, risks.outerJoined)},
            {"ambiguous", AmbiguityToJson(answer)}};
}

} // namespace qe::tool
