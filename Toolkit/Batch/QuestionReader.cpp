#include "Toolkit/Batch/QuestionReader.h"

#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace qe::tool {

namespace {

constexpr NumberRange kGovernorRange{.minimum = -1000000, .maximum = 1000000};

const char* const kSubjects = "subjects";
const char* const kSecondSet = "secondSet";

JsonWords<EOperation> OperationWords()
{
    JsonWords<EOperation> words;
    for (const EOperation operation : kOperations)
        words.emplace_back(ToText(operation), operation);
    return words;
}

JsonWords<ESelector> SelectorWords()
{
    JsonWords<ESelector> words;
    std::copy_if(kSelectorWords.begin(), kSelectorWords.end(), std::back_inserter(words),
                 [](const auto& word) { return word.second != ESelector::Ask; });
    return words;
}

JsonWords<AQE_RequestContext::ECommandType> CommandTypeWords()
{
    return {kCommandTypeWords.begin(), kCommandTypeWords.end()};
}

/// Tells which lists a question cannot do without.
void RequireSubjects(const Question& question, JsonProblems& problems)
{
    const auto require = [&problems](const std::vector<std::string>& names, const char* key) {
        if (names.empty())
            problems.Add(ChildPointer("", key), "must name at least one subject");
    };
    require(question.subjects, kSubjects);
    if (question.operation == EOperation::PathBetween ||
        question.operation == EOperation::BestPathsBetween)
        require(question.secondSet, kSecondSet);
}

/// Replaces a value by what was read, if anything was.
template <typename Value, typename Read>
void Replace(Value& value, const std::optional<Read>& read)
{
    if (read)
        value = *read;
}

void ReadLists(JsonObject& request, Question& question)
{
    Replace(question.subjects, request.GetTexts(kSubjects));
    Replace(question.secondSet, request.GetTexts(kSecondSet));
    Replace(question.favouredJoins, request.GetTexts("favouredJoins"));
    Replace(question.requiredJoins, request.GetTexts("requiredJoins"));
    Replace(question.avoidedJoins, request.GetTexts("avoidedJoins"));
    Replace(question.favouredSubjects, request.GetTexts("favouredSubjects"));
    Restriction& restriction = question.restriction;
    Replace(restriction.onlySubjects, request.GetTexts("onlySubjects"));
    Replace(restriction.withoutSubjects, request.GetTexts("withoutSubjects"));
    Replace(restriction.onlyJoins, request.GetTexts("onlyJoins"));
    Replace(restriction.withoutJoins, request.GetTexts("withoutJoins"));
}

void ReadChoices(JsonObject& request, Question& question)
{
    Replace(question.ranking.useFactTableCount, request.GetBoolean("useFactTableCount"));
    Replace(question.ranking.useStraightestPath, request.GetBoolean("useStraightestPath"));
    SelectorChoice& selector = question.selector;
    Replace(selector.kind, request.GetChoice("selector", SelectorWords()));
    Replace(selector.checkOptional, request.GetBoolean("checkOptional"));
    Replace(selector.subjectsAreCandidates, request.GetBoolean("subjectsAreCandidates"));
    Replace(question.governors.crossProduct, request.GetNumber("crossProduct", kGovernorRange));
    Replace(question.governors.grouping, request.GetNumber("grouping", kGovernorRange));
    Replace(question.commandType, request.GetChoice("commandType", CommandTypeWords()));
}

Question ReadAll(const nlohmann::json& json, const Question& defaults, JsonProblems& problems)
{
    Question question = defaults;
    JsonObject request({&json, ""}, problems);
    Replace(question.operation, request.GetChoice("operation", OperationWords()));
    ReadLists(request, question);
    ReadChoices(request, question);
    // What an evaluation reads beside the question.
    request.Ignore({"id", "db", "given", "joins", "case", "ties", "text", "count"});
    request.RejectUnknownKeys();
    return question;
}

} // namespace

RequestDocument ParseRequest(std::string_view text)
{
    RequestDocument request;
    request.json = ParseJson(text, request.problems);
    return request;
}

Question ReadQuestion(const RequestDocument& request, const Question& defaults)
{
    JsonProblems problems = request.problems;
    Question question = ReadAll(request.json, defaults, problems);
    if (problems.IsEmpty())
        RequireSubjects(question, problems);
    problems.ThrowIfAny();
    return question;
}

Question ReadDefaults(std::string_view text)
{
    RequestDocument request = ParseRequest(text);
    Question question = ReadAll(request.json, {}, request.problems);
    request.problems.ThrowIfAny();
    return question;
}

} // namespace qe::tool
