#include "Toolkit/Evaluate/Evaluation.h"

#include "Engine/Model/Model.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonObject.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace qe::tool {

namespace {

constexpr std::size_t kLongestLine = std::size_t{1} << 24;

/// What a request says beside the question.
struct WrittenRequest
{
    std::string id{};
    std::string database{};
    std::string given{};
    std::string caseName{};
    std::vector<NamedPair> joins{};
};

/// Returns what a key holds, whatever it is, as a text; empty when there is no such key.
std::string TextOf(const nlohmann::json& request, const char* key)
{
    const auto found = request.find(key);
    if (found == request.end())
        return "";
    return found->is_string() ? found->get<std::string>() : found->dump();
}

NamedPair ReadPair(const PlacedJson& json, JsonProblems& problems)
{
    std::vector<std::string> columns;
    for (const PlacedJson& element : ReadList(json, problems))
        columns.push_back(ascii::ToLower(ReadText(element, problems).value_or("")));
    if (columns.size() != 2) {
        problems.Add(json.pointer, "must be a list of two columns");
        return {};
    }
    return {std::min(columns[0], columns[1]), std::max(columns[0], columns[1])};
}

/// Reads what can be read without fail.
WrittenRequest ReadWritten(const nlohmann::json& request)
{
    WrittenRequest written;
    if (request.is_object()) {
        written.id = TextOf(request, "id");
        written.database = TextOf(request, "db");
        written.given = TextOf(request, "given");
        written.caseName = TextOf(request, "case");
    }
    return written;
}

std::vector<NamedPair> ReadJoins(const nlohmann::json& request)
{
    JsonProblems problems;
    JsonObject object({&request, ""}, problems);
    std::vector<NamedPair> pairs;
    for (const PlacedJson& join : object.GetList("joins"))
        pairs.push_back(ReadPair(join, problems));
    if (problems.IsEmpty() && pairs.empty())
        problems.Add("/joins", "an evaluation needs the joins that a person wrote");
    problems.ThrowIfAny();
    return pairs;
}

std::vector<NamedPair> FindPathPairs(const model::Model& model, const Answer& answer,
                                     const std::vector<amd_id>& path)
{
    std::vector<NamedPair> pairs;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join == nullptr)
            continue;
        for (NamedPair& pair : FindNamedPairs(model, join->left, join->right, join->condition)) {
            if (pair.second < pair.first)
                std::swap(pair.first, pair.second);
            pairs.push_back(std::move(pair));
        }
    }
    return pairs;
}

EComparison Compare(const EvaluatedModel& model, const Answer& answer, const ColumnClasses& written)
{
    if (answer.error)
        return EComparison::Refused;
    const model::Model& objects = *model.tool.model;
    const auto isWritten = [&](const std::vector<amd_id>& path) {
        return ColumnClasses(FindPathPairs(objects, answer, path)) == written;
    };
    if (!answer.connected)
        return EComparison::NotConnected;
    if (isWritten(answer.path))
        return EComparison::Same;
    for (const Alternative& alternative : answer.alternatives) {
        if (alternative.weight == answer.alternatives.front().weight &&
            isWritten(alternative.joins))
            return EComparison::OtherOfEquallyGood;
    }
    return written.CanBeMadeOf(model.pairs) ? EComparison::LongerThanNeeded
                                            : EComparison::OutsideModel;
}

std::vector<NamedPair> Without(std::vector<NamedPair> pairs, const std::vector<NamedPair>& others)
{
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::remove_if(pairs.begin(), pairs.end(),
                               [&others](const NamedPair& pair) {
                                   return std::find(others.begin(), others.end(), pair) !=
                                          others.end();
                               }),
                pairs.end());
    return pairs;
}

class Evaluator
{
public:
    Evaluator(ModelSource& models, const Question& defaults) : mModels(models), mDefaults(defaults)
    {}

    void Add(const RequestLine& line)
    {
        Difference difference;
        difference.line = line.number;
        WrittenRequest written;
        Question question;
        try {
            if (line.isTooLong)
                throw InputError({InputProblem{"", "the line is too long"}});
            const RequestDocument request = ParseRequest(line.text);
            written = ReadWritten(request.json);
            question = ReadQuestion(request, mDefaults);
            written.joins = ReadJoins(request.json);
            Ask(written, question, difference);
        } catch (const InputError& error) {
            difference.reason = error.what();
        }
        difference.id = written.id;
        mEvaluation.all.Add(difference.comparison);
        mEvaluation.byGiven[written.given].Add(difference.comparison);
        mEvaluation.byCase[written.caseName].Add(difference.comparison);
        mEvaluation.bySubjects[question.subjects.size()].Add(difference.comparison);
        if (difference.comparison != EComparison::Same)
            mEvaluation.differences.push_back(std::move(difference));
    }

    [[nodiscard]] Evaluation Take() { return std::move(mEvaluation); }

private:
    void Ask(const WrittenRequest& written, const Question& question, Difference& difference)
    {
        const EvaluatedModel& model = mModels.Get(written.database);
        const Answer answer = tool::Ask(model.tool, question);
        difference.comparison = Compare(model, answer, ColumnClasses(written.joins));
        if (answer.error)
            difference.reason = answer.error->text;
        difference.isCut = answer.ambiguity && answer.ambiguity->IsCut();
        mEvaluation.cutLists += difference.isCut ? 1 : 0;
        const auto chosen = FindPathPairs(*model.tool.model, answer, answer.path);
        difference.onlyWritten = Without(written.joins, chosen);
        difference.onlyChosen = Without(chosen, written.joins);
    }

    ModelSource& mModels;
    const Question& mDefaults;
    Evaluation mEvaluation;
};

} // namespace

std::string_view ToText(EComparison comparison)
{
    switch (comparison) {
    case EComparison::Same:
        return "same";
    case EComparison::OtherOfEquallyGood:
        return "other of equally good";
    case EComparison::LongerThanNeeded:
        return "longer than needed";
    case EComparison::OutsideModel:
        return "outside the model";
    case EComparison::NotConnected:
        return "not connected";
    case EComparison::Refused:
        return "refused";
    }
    return "";
}

std::size_t Tally::CountRequests() const
{
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

std::size_t Tally::CountEquallyGood() const
{
    return Get(EComparison::Same) + Get(EComparison::OtherOfEquallyGood);
}

Evaluation Evaluate(ModelSource& models, std::istream& requests, const Question& defaults)
{
    Evaluator evaluator(models, defaults);
    LineReader reader(requests, kLongestLine);
    RequestLine line;
    while (reader.Next(line))
        evaluator.Add(line);
    return evaluator.Take();
}

} // namespace qe::tool
