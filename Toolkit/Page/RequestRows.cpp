#include "Toolkit/Page/RequestRows.h"

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>

namespace qe::tool {

namespace {

std::string SelectorText(const SelectorChoice& selector)
{
    switch (selector.kind) {
    case ESelector::First:
        return "first";
    case ESelector::Keys:
        return "keys";
    case ESelector::Ask:
        return "the user";
    case ESelector::MainObject:
        break;
    }
    std::string text = "main object";
    if (selector.checkOptional)
        text += ", no optional ends";
    return text + (selector.subjectsAreCandidates ? ", among the subjects" : ", any subject");
}

std::string RankingText(const RankingSwitches& switches)
{
    std::vector<std::string> names;
    for (const RankingCriterion& criterion : GetRankingCriteria()) {
        if (criterion.isOn(switches))
            names.emplace_back(criterion.name);
    }
    return JoinTexts(names);
}

std::string SettingsText(const Question& question)
{
    const auto toText = [](const Setting& setting) { return ToText(setting); };
    return question.settings.empty() ? "defaults" : JoinTexts(question.settings, toText);
}

} // namespace

std::vector<std::pair<std::string, std::string>> ListRequestRows(const Question& question,
                                                                 const Answer& answer)
{
    const Restriction& restriction = question.restriction;
    std::vector<std::pair<std::string, std::string>> rows{
        {"Operation", std::string(ToText(question.operation))},
        {"Subjects", JoinTexts(question.subjects)},
        {"Second set", JoinTexts(question.secondSet)},
        {"Favoured joins", JoinTexts(question.favouredJoins)},
        {"Required joins", JoinTexts(question.requiredJoins)},
        {"Avoided joins", JoinTexts(question.avoidedJoins)},
        {"Favoured subjects", JoinTexts(question.favouredSubjects)},
        {"Only subjects", JoinTexts(restriction.onlySubjects)},
        {"Without subjects", JoinTexts(restriction.withoutSubjects)},
        {"Only joins", JoinTexts(restriction.onlyJoins)},
        {"Without joins", JoinTexts(restriction.withoutJoins)},
        {"Selector", SelectorText(question.selector)},
        {"Ranking", RankingText(question.ranking)},
        {"Governors", "cross product " + std::to_string(answer.governors.crossProductAllowed) +
                          ", shortcut grouping " +
                          std::to_string(answer.governors.shortcutGrouping)},
        {"Settings", SettingsText(question)}};
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [](const auto& row) { return row.second.empty(); }),
               rows.end());
    return rows;
}

} // namespace qe::tool
