#include "Toolkit/Agent/ToolCall.h"

#include "Toolkit/Agent/ToolList.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr std::array<std::pair<std::string_view, ToolResult (*)(ToolCall&)>, 6> kTools{{
    {"list_subjects", ListSubjects},
    {"describe", DescribeSubject},
    {"join_path", FindJoinPath},
    {"alternatives", ListPathAlternatives},
    {"explain", ExplainPath},
    {"check", CheckServedModel},
}};

constexpr const char* kCursorKey = "cursor";

std::string TellMistakes(const InputError& mistakes)
{
    std::string text;
    for (const InputProblem& problem : mistakes.GetProblems()) {
        const std::string place = problem.place.empty() ? "" : problem.place + ": ";
        text += ToDisplayText(place + problem.text + ToHint(problem.nearestNames)) + '\n';
    }
    return text;
}

} // namespace

Answer ShelfAsker::Ask(const ServedModel& model, const Question& question)
{
    std::unique_ptr<Asker>& asker = mAskers[&model];
    if (asker == nullptr)
        asker = std::make_unique<Asker>(model.asked);
    try {
        return asker->Ask(question);
    } catch (const InputError&) {
        throw;
    } catch (...) {
        asker.reset();
        throw;
    }
}

const ServedModel& ToolCall::FindModel()
{
    const std::string name = arguments.GetText("model");
    problems.ThrowIfAny();
    return asker.GetShelf().Find(name);
}

ListPage ReadPage(ToolCall& call, std::size_t total, std::size_t usualLimit)
{
    constexpr NumberRange kLimits{.minimum = 1, .maximum = 1000};
    const auto limit = call.arguments.GetNumber("limit", kLimits);
    const std::string cursor = call.arguments.GetText(kCursorKey);
    ListPage page;
    if (!cursor.empty()) {
        const char* const end = cursor.data() + cursor.size();
        const auto [stop, failure] = std::from_chars(cursor.data(), end, page.first);
        if (failure != std::errc() || stop != end || page.first >= total)
            call.problems.Add(ChildPointer("", kCursorKey),
                              "is no cursor of this list: \"" + cursor + '"');
    }
    call.problems.ThrowIfAny();
    page.count =
        std::min(limit ? static_cast<std::size_t>(*limit) : usualLimit, total - page.first);
    if (page.first + page.count < total)
        page.next = std::to_string(page.first + page.count);
    return page;
}

ToolResult CallTool(ShelfAsker& asker, std::string_view tool, const nlohmann::json& arguments)
{
    const auto* const found = std::find_if(
        kTools.begin(), kTools.end(), [tool](const auto& entry) { return entry.first == tool; });
    if (found == kTools.end())
        throw std::invalid_argument("no such tool");
    const std::vector<std::string> keys = ListToolArguments(tool);
    try {
        JsonProblems problems;
        JsonObject object({&arguments, ""}, problems);
        for (const std::string& key : keys)
            object.Ignore({key});
        object.RejectUnknownKeys();
        ToolCall call{.asker = asker, .json = arguments, .arguments = object, .problems = problems};
        return found->second(call);
    } catch (const InputError& mistakes) {
        return {.text = TellMistakes(mistakes), .isMistake = true};
    }
}

} // namespace qe::tool
