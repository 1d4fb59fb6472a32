#include "Toolkit/Evaluate/Evaluation.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/PassedTables.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Evaluate/HistoryRounds.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/History/PastQuery.h"
#include "Toolkit/History/RecordReader.h"
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
    std::string text{};
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

/// Reads what can be read without fail.
WrittenRequest ReadWritten(const nlohmann::json& request)
{
    WrittenRequest written;
    if (request.is_object()) {
        written.id = TextOf(request, "id");
        written.database = TextOf(request, "db");
        written.given = TextOf(request, "given");
        written.caseName = TextOf(request, "case");
        written.text = TextOf(request, "text");
    }
    return written;
}

std::vector<NamedPair> ReadJoins(const nlohmann::json& request)
{
    JsonProblems problems;
    JsonObject object({&request, ""}, problems);
    std::vector<NamedPair> pairs = ReadNamedPairs(object, problems);
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

/// A line of the requests, as far as it could be read.
struct ReadRequest
{
    std::size_t line = 0;
    WrittenRequest written{};
    Question question{};
    /// Why it cannot be asked; empty when it can.
    std::string reason{};
};

ReadRequest ReadRequestLine(const RequestLine& line, const Question& defaults)
{
    ReadRequest read{.line = line.number};
    try {
        if (line.isTooLong)
            throw InputError({InputProblem{"", "the line is too long"}});
        const RequestDocument request = ParseRequest(line.text);
        read.written = ReadWritten(request.json);
        read.question = ReadQuestion(request, defaults);
        read.written.joins = ReadJoins(request.json);
    } catch (const InputError& error) {
        read.reason = error.what();
    }
    return read;
}

/// Returns what the request is to those that come with it as their history.
PastQuery ToPastQuery(const ReadRequest& request)
{
    PastQuery query{.id = request.written.id,
                    .database = request.written.database,
                    .text = request.written.text};
    for (const std::string& subject : request.question.subjects)
        query.tables.push_back(ToTableName(subject));
    if (request.reason.empty())
        query.pairs = request.written.joins;
    Normalise(query);
    return query;
}

class Evaluator
{
public:
    Evaluator(ModelSource& models, const std::vector<PastQuery>& queries, EHistoryRound round)
        : mRounds(round, models, queries)
    {}

    /// Asks the requests, all of them in their order.
    void Add(std::size_t position, const ReadRequest& request)
    {
        Difference difference;
        difference.line = request.line;
        difference.id = request.written.id;
        difference.reason = request.reason;
        if (request.reason.empty()) {
            try {
                Ask(position, request, difference);
            } catch (const InputError& error) {
                difference.reason = error.what();
            }
        }
        mEvaluation.all.Add(difference.comparison, difference.isSameSkipping);
        mEvaluation.byGiven[request.written.given].Add(difference.comparison,
                                                       difference.isSameSkipping);
        mEvaluation.byCase[request.written.caseName].Add(difference.comparison,
                                                         difference.isSameSkipping);
        mEvaluation.bySubjects[request.question.subjects.size()].Add(difference.comparison,
                                                                     difference.isSameSkipping);
        if (difference.comparison != EComparison::Same)
            mEvaluation.differences.push_back(std::move(difference));
    }

    [[nodiscard]] Evaluation Take() { return std::move(mEvaluation); }

private:
    void Ask(std::size_t position, const ReadRequest& request, Difference& difference)
    {
        Question question = request.question;
        const EvaluatedModel& model = mRounds.Prepare(position, question);
        const Answer answer = tool::Ask(model.tool, question);
        const std::vector<NamedPair>& joins = request.written.joins;
        difference.comparison = Compare(model, answer, ColumnClasses(joins));
        if (answer.error)
            difference.reason = answer.error->text;
        const ShortenedPath skipping = SkipPassedTables(*model.tool.model, answer, answer.path);
        difference.isSameSkipping =
            answer.connected &&
            ColumnClasses(FindPathPairs(*model.tool.model, skipping.answer, skipping.joins)) ==
                ColumnClasses(joins);
        difference.isCut = answer.ambiguity && answer.ambiguity->IsCut();
        mEvaluation.cutLists += difference.isCut ? 1 : 0;
        const auto chosen = FindPathPairs(*model.tool.model, answer, answer.path);
        difference.onlyWritten = Without(joins, chosen);
        difference.onlyChosen = Without(chosen, joins);
    }

    HistoryRounds mRounds;
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

namespace {

Evaluation AskAll(ModelSource& models, const std::vector<ReadRequest>& requests,
                  const std::vector<PastQuery>& queries, EHistoryRound round)
{
    Evaluator evaluator(models, queries, round);
    for (std::size_t position = 0; position < requests.size(); ++position)
        evaluator.Add(position, requests[position]);
    return evaluator.Take();
}

} // namespace

Evaluation Evaluate(ModelSource& models, std::istream& requests, const Question& defaults,
                    EHistoryRound round)
{
    LineReader reader(requests, kLongestLine);
    RequestLine line;
    std::vector<ReadRequest> read;
    std::vector<PastQuery> queries;
    while (reader.Next(line)) {
        read.push_back(ReadRequestLine(line, defaults));
        queries.push_back(ToPastQuery(read.back()));
    }
    Evaluation evaluation = AskAll(models, read, queries, round);
    if (round != EHistoryRound::None)
        evaluation.withoutHistory = AskAll(models, read, queries, EHistoryRound::None).all;
    return evaluation;
}

} // namespace qe::tool
