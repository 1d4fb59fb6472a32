#include "Toolkit/Batch/QuestionReader.h"

#include "Toolkit/Text/InputError.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// Reads values into a question and gathers what is wrong with them.
class Reader
{
public:
    explicit Reader(Question& question) : mQuestion(question) {}

    void Read(const Json& request);
    void RequireSubjects();
    void ThrowProblems() const;

private:
    using Set = std::function<void(const Json& value)>;

    [[nodiscard]] std::map<std::string, Set> MakeSetters();
    [[nodiscard]] Set ToNames(Names& names);
    [[nodiscard]] Set ToFlag(bool& flag);
    [[nodiscard]] Set ToNumber(std::optional<std::int32_t>& number);
    template <typename T>
    [[nodiscard]] Set ToChoice(T& chosen, std::vector<std::pair<std::string, T>> choices);
    void AddProblem(std::string text, Names nearest = {});

    Question& mQuestion;
    std::string mPlace;
    std::vector<InputProblem> mProblems;
};

void Reader::Read(const Json& request)
{
    if (!request.is_object()) {
        AddProblem("a request is an object");
        return;
    }
    const std::map<std::string, Set> setters = MakeSetters();
    for (const auto& [key, value] : request.items()) {
        mPlace = "/" + key;
        if (const auto setter = setters.find(key); setter != setters.end())
            setter->second(value);
        else
            AddProblem("a request has no such key");
    }
}

void Reader::RequireSubjects()
{
    mPlace = "/subjects";
    if (mProblems.empty() && mQuestion.subjects.empty())
        AddProblem("a request names subjects");
}

std::map<std::string, Reader::Set> Reader::MakeSetters()
{
    std::vector<std::pair<std::string, EOperation>> operations;
    operations.reserve(kOperations.size());
    for (const EOperation operation : kOperations)
        operations.emplace_back(ToText(operation), operation);
    const Set ignore = [](const Json&) {};
    Restriction& restriction = mQuestion.restriction;
    SelectorChoice& selector = mQuestion.selector;
    return {
        {"operation", ToChoice(mQuestion.operation, operations)},
        {"subjects", ToNames(mQuestion.subjects)},
        {"secondSet", ToNames(mQuestion.secondSet)},
        {"favouredJoins", ToNames(mQuestion.favouredJoins)},
        {"requiredJoins", ToNames(mQuestion.requiredJoins)},
        {"avoidedJoins", ToNames(mQuestion.avoidedJoins)},
        {"favouredSubjects", ToNames(mQuestion.favouredSubjects)},
        {"onlySubjects", ToNames(restriction.onlySubjects)},
        {"withoutSubjects", ToNames(restriction.withoutSubjects)},
        {"onlyJoins", ToNames(restriction.onlyJoins)},
        {"withoutJoins", ToNames(restriction.withoutJoins)},
        {"useFactTableCount", ToFlag(mQuestion.ranking.useFactTableCount)},
        {"useStraightestPath", ToFlag(mQuestion.ranking.useStraightestPath)},
        {"selector", ToChoice(selector.kind, {{"keys", ESelector::Keys},
                                              {"first", ESelector::First},
                                              {"main-object", ESelector::MainObject}})},
        {"checkOptional", ToFlag(selector.checkOptional)},
        {"subjectsAreCandidates", ToFlag(selector.subjectsAreCandidates)},
        {"crossProduct", ToNumber(mQuestion.governors.crossProduct)},
        {"grouping", ToNumber(mQuestion.governors.grouping)},
        {"commandType",
         ToChoice(mQuestion.commandType, {{"none", AQE_RequestContext::CommandTypeNone},
                                          {"query", AQE_RequestContext::CommandTypeQuery},
                                          {"validate", AQE_RequestContext::CommandTypeValidate},
                                          {"describe", AQE_RequestContext::CommandTypeDescribe}})},
        // What an evaluation reads beside the question.
        {"id", ignore},
        {"db", ignore},
        {"given", ignore},
        {"joins", ignore},
        {"case", ignore},
        {"ties", ignore},
    };
}

Reader::Set Reader::ToNames(Names& names)
{
    return [this, &names](const Json& value) {
        const bool isList = value.is_array();
        Names read;
        for (const Json& name : isList ? value : Json::array()) {
            if (name.is_string())
                read.push_back(name.get<std::string>());
        }
        if (isList && read.size() == value.size())
            names = std::move(read);
        else
            AddProblem("this is a list of names");
    };
}

Reader::Set Reader::ToFlag(bool& flag)
{
    return [this, &flag](const Json& value) {
        if (value.is_boolean())
            flag = value.get<bool>();
        else
            AddProblem("this is true or false");
    };
}

Reader::Set Reader::ToNumber(std::optional<std::int32_t>& number)
{
    return [this, &number](const Json& value) {
        constexpr int kMost = 1000000;
        if (value.is_number_integer() && value >= -kMost && value <= kMost)
            number = value.get<std::int32_t>();
        else
            AddProblem("this is a whole number between -1000000 and 1000000");
    };
}

template <typename T>
Reader::Set Reader::ToChoice(T& chosen, std::vector<std::pair<std::string, T>> choices)
{
    return [this, &chosen, choices = std::move(choices)](const Json& value) {
        Names names;
        for (const auto& choice : choices) {
            if (value == choice.first) {
                chosen = choice.second;
                return;
            }
            names.push_back(choice.first);
        }
        AddProblem("there is no such choice", std::move(names));
    };
}

void Reader::AddProblem(std::string text, Names nearest)
{
    mProblems.push_back({mPlace, std::move(text), std::move(nearest)});
}

void Reader::ThrowProblems() const
{
    if (!mProblems.empty())
        throw InputError(mProblems);
}

} // namespace

Question ReadQuestion(const Json& request, const Question& defaults)
{
    Question question = defaults;
    Reader reader(question);
    reader.Read(request);
    reader.RequireSubjects();
    reader.ThrowProblems();
    return question;
}

Question ReadDefaults(const std::string& text)
{
    Question question;
    Reader reader(question);
    reader.Read(ParseJsonLine(text));
    reader.ThrowProblems();
    return question;
}

Json ParseJsonLine(std::string_view text)
{
    try {
        return Json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        throw InputError({InputProblem{"column " + std::to_string(error.byte), "this is no JSON"}});
    }
}

} // namespace qe::tool
