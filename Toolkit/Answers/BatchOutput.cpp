#include "Toolkit/Answers/BatchOutput.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Batch/Batch.h"

#include <nlohmann/json.hpp>
#include <variant>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// Writes the members of the answer, or the error, behind those that are there.
class OutcomeWriter
{
public:
    OutcomeWriter(Json& json, const Question& question, ListLimit alternatives)
        : mJson(json), mQuestion(question), mAlternatives(alternatives)
    {}

    void operator()(const Answer& answer)
    {
        mJson.update(ToJson(mQuestion, answer, mAlternatives));
    }

    void operator()(const InputError& error)
    {
        Json problems = Json::array();
        for (const InputProblem& problem : error.GetProblems())
            problems.push_back({{"place", problem.place},
                                {"text", problem.text},
                                {"nearestNames", problem.nearestNames}});
        mJson["error"] = {{"kind", "request"}, {"text", error.what()}, {"problems", problems}};
    }

    void operator()(const InternalFailure& failure)
    {
        mJson["error"] = {{"kind", "internal"}, {"text", failure.text}};
    }

private:
    Json& mJson;
    const Question& mQuestion;
    ListLimit mAlternatives;
};

} // namespace

Json ToJson(const BatchEntry& entry, ListLimit alternatives)
{
    Json json{{"line", entry.line}, {"id", entry.id}};
    std::visit(OutcomeWriter(json, entry.question, alternatives), entry.outcome);
    return json;
}

} // namespace qe::tool
