#include "Toolkit/Answers/FactOutput.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/FactReport.h"
#include "Toolkit/Ask/SubjectName.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

} // namespace

void WriteText(std::ostream& out, const FactReport& report, const model::Model& model)
{
    out << report.facts.size() << (report.facts.size() == 1 ? " fact\n" : " facts\n");
    for (const FactReport::Fact& fact : report.facts) {
        out << "  " << ToDisplayText(SubjectName(model, fact.subject));
        if (!fact.allDimensions.empty())
            out << ": " << ToDisplayList(SubjectNames(model, fact.allDimensions));
        out << '\n';
    }
    if (report.facts.size() > 1)
        out << "Shared dimensions: " << ToDisplayList(SubjectNames(model, report.sharedDimensions))
            << '\n';
    for (const FactReport::Problem& problem : report.problems)
        out << "Join " << ToDisplayText(model.Find(problem.join)->name) << ": "
            << ToDisplayText(problem.text) << '\n';
}

Json ToJson(const FactReport& report, const model::Model& model)
{
    Json facts = Json::array();
    for (const FactReport::Fact& fact : report.facts)
        facts.push_back({{"fact", SubjectName(model, fact.subject)},
                         {"ownDimensions", SubjectNames(model, fact.ownDimensions)},
                         {"allDimensions", SubjectNames(model, fact.allDimensions)}});
    Json problems = Json::array();
    for (const FactReport::Problem& problem : report.problems)
        problems.push_back({{"join", ToText(problem.join)},
                            {"name", model.Find(problem.join)->name},
                            {"text", problem.text}});
    return {{"version", kAnswerVersion},
            {"facts", facts},
            {"sharedDimensions", SubjectNames(model, report.sharedDimensions)},
            {"problems", problems}};
}

} // namespace qe::tool
