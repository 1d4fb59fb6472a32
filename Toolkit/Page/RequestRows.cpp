#include "Toolkit/Page/RequestRows.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <algorithm>

namespace qe::tool {

namespace {

std::string List(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

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

std::string SettingsText(const Question& question)
{
    std::vector<std::string> settings;
    for (const Setting& setting : question.settings)
        settings.push_back(ToText(setting));
    return settings.empty() ? "defaults" : List(settings);
}

} // namespace

std::vector<std::pair<std::string, std::string>> ListRequestRows(const Question& question,
                                                                 const Answer& answer)
{
    const RankingChoice& ranking = question.ranking;
    const Restriction& restriction = question.restriction;
    std::vector<std::pair<std::string, std::string>> rows{
        {"Operation", std::string(ToText(question.operation))},
        {"Subjects", List(question.subjects)},
        {"Second set", List(question.secondSet)},
        {"Favoured joins", List(question.favouredJoins)},
        {"Required joins", List(question.requiredJoins)},
        {"Avoided joins", List(question.avoidedJoins)},
        {"Favoured subjects", List(question.favouredSubjects)},
        {"Only subjects", List(restriction.onlySubjects)},
        {"Without subjects", List(restriction.withoutSubjects)},
        {"Only joins", List(restriction.onlyJoins)},
        {"Without joins", List(restriction.withoutJoins)},
        {"Selector", SelectorText(question.selector)},
        {"Ranking", std::string(ranking.useFactTableCount ? "weight, fact tables" : "weight") +
                        (ranking.useStraightestPath ? ", straightness" : "")},
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
