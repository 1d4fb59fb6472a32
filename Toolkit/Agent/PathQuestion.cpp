#include "Toolkit/Agent/PathQuestion.h"

#include "Toolkit/Ask/Ambiguity.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

/// The paths that a user is given to choose from.
constexpr std::size_t kMostOptions = 5;
/// The joins and subjects that a label names.
constexpr std::size_t kMostNames = 5;

/// Returns the positions of the candidates to choose from, in their order. The answered one is
/// among them.
std::vector<std::size_t> ChooseOptions(const Answer& answer)
{
    const std::size_t count = answer.ambiguity->equallyCheap;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < std::min(count, kMostOptions); ++i)
        positions.push_back(i);
    if (answer.chosen && *answer.chosen >= positions.size() && *answer.chosen < count)
        positions.back() = *answer.chosen;
    return positions;
}

std::string DescribeWay(const model::Model& model, const Answer& answer, const amd_id& id)
{
    const AnswerJoin* const join = answer.FindJoin(id);
    return join == nullptr ? JoinName(model, id)
                           : SubjectName(model, join->left) + " to " +
                                 SubjectName(model, join->right) + " by " + JoinName(model, id);
}

/// Writes what tells each of the candidates from those beside it.
class OptionLabels
{
public:
    OptionLabels(const model::Model& model, const Answer& answer,
                 std::span<const std::size_t> options)
        : mModel(model), mAnswer(answer), mOptions(options.size())
    {
        for (const std::size_t option : options) {
            for (const amd_id& join : answer.alternatives[option].joins)
                ++mUses[join];
        }
    }

    [[nodiscard]] std::string Write(std::size_t option) const
    {
        std::vector<std::string> texts;
        for (const amd_id& join : mAnswer.alternatives[option].joins) {
            if (mUses.at(join) < mOptions)
                texts.push_back(DescribeWay(mModel, mAnswer, join));
        }
        return texts.empty() ? "without further joins" : JoinFirstTexts(texts, kMostNames);
    }

private:
    const model::Model& mModel;
    const Answer& mAnswer;
    std::size_t mOptions;
    std::map<amd_id, std::size_t> mUses;
};

void AddNames(nlohmann::json& arguments, const char* key, const std::vector<std::string>& names)
{
    if (names.empty())
        return;
    nlohmann::json list = arguments.value(key, nlohmann::json::array());
    for (const std::string& name : names) {
        if (std::find(list.begin(), list.end(), name) == list.end())
            list.push_back(name);
    }
    arguments[key] = std::move(list);
}

std::string WriteQuestion(const Answer& answer)
{
    std::vector<std::string> names;
    for (const amd_id& subject : answer.terminals)
        names.push_back(answer.NameOf(subject));
    return "Several ways connect " + JoinFirstTexts(names, kMostNames) +
           " equally well; which one is meant?";
}

std::string DescribeChoice(const PathQuestion& question)
{
    if (question.mustAsk)
        return "ASK THE USER before you use this path; only names or their order decided for it.";
    if (question.decidedBy.empty())
        return "ASK THE USER where the request does not say it.";
    return "Ask the user where the request does not say it; this path was chosen by: " +
           question.decidedBy + '.';
}

} // namespace

std::optional<nlohmann::json> MakeArguments(const model::Model& model, const Answer& answer,
                                            const nlohmann::json& arguments,
                                            std::size_t alternative)
{
    const std::optional<Turn> turn = FindTurn(model, answer, alternative);
    if (!turn)
        return std::nullopt;
    nlohmann::json more = arguments;
    AddNames(more, "favouredJoins", turn->favoured);
    AddNames(more, "requiredJoins", turn->required);
    return more;
}

std::optional<PathQuestion> FindPathQuestion(const model::Model& model, const Answer& answer,
                                             const nlohmann::json& arguments)
{
    if (!answer.ambiguity || answer.ambiguity->equallyCheap < 2)
        return std::nullopt;
    PathQuestion question{.text = WriteQuestion(answer),
                          .mustAsk = answer.ambiguity->isArbitrary,
                          .decidedBy = DecisionText(answer)};
    const std::vector<std::size_t> options = ChooseOptions(answer);
    const OptionLabels labels(model, answer, options);
    for (const std::size_t option : options) {
        if (auto next = MakeArguments(model, answer, arguments, option))
            question.options.push_back({.label = labels.Write(option),
                                        .isAnswered = answer.chosen == option,
                                        .arguments = std::move(*next)});
    }
    if (question.options.empty())
        return std::nullopt;
    question.notShown = answer.ambiguity->equallyCheap - question.options.size();
    return question;
}

nlohmann::ordered_json ToJson(const std::optional<PathQuestion>& question)
{
    if (!question)
        return {};
    nlohmann::ordered_json options = nlohmann::ordered_json::array();
    for (const PathOption& option : question->options)
        options.push_back({{"label", option.label},
                           {"isAnswered", option.isAnswered},
                           {"arguments", option.arguments}});
    return {{"text", question->text},
            {"mustAsk", question->mustAsk},
            {"decidedBy", question->decidedBy},
            {"options", std::move(options)},
            {"notShown", question->notShown}};
}

std::string ToText(const PathQuestion& question)
{
    std::string text = "QUESTION FOR THE USER: " + ToDisplayText(question.text) + '\n';
    std::size_t number = 0;
    for (const PathOption& option : question.options)
        text += "  " + std::to_string(++number) + ". " + ToDisplayText(option.label) +
                (option.isAnswered ? " (the path above)" : "") +
                "\n     then call join_path with " +
                ToDisplayText(ToJsonLine(nlohmann::ordered_json(option.arguments))) + '\n';
    if (question.notShown != 0)
        text += "  There are " + std::to_string(question.notShown) +
                " more, which the tool alternatives lists.\n";
    return text + DescribeChoice(question) + '\n';
}

} // namespace qe::tool
