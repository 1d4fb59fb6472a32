#include "Tests/Fuzz/ReadingFaults.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <tuple>

namespace qe::test {

namespace {

/// Far more than the longest list of problems.
constexpr std::size_t kMostProblems = 1000;

auto Tie(const model::ObjectRecord& record)
{
    return std::tie(record.id, record.name, record.displayName, record.parent, record.space,
                    record.locale, record.text, record.keys, record.referenced, record.shortcutKind,
                    record.left, record.right, record.leftCardinality, record.rightCardinality);
}

auto Tie(const tool::Decision& decision)
{
    return std::tie(decision.subjects, decision.preferred, decision.avoided, decision.reason);
}

template <typename List>
bool AreEqual(const List& left, const List& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const auto& one, const auto& other) { return Tie(one) == Tie(other); });
}

/// Returns which part of the model differs; empty when none does.
std::string FindDifference(const tool::ToolModel& model, const tool::ToolModel& again)
{
    if (!AreEqual(model.model->GetRecords(), again.model->GetRecords()))
        return "objects";
    if (!AreEqual(model.decisions, again.decisions))
        return "decisions";
    if (model.descriptions != again.descriptions || model.rows != again.rows)
        return "descriptions or rows";
    if (model.userClasses != again.userClasses || model.histories != again.histories)
        return "user classes or histories";
    return model.writtenNames.dialect != again.writtenNames.dialect ||
                   model.writtenNames.quoted != again.writtenNames.quoted
               ? "written names"
               : "";
}

} // namespace

std::string FindFault(const tool::InputError& error)
{
    if (error.GetProblems().empty() || error.GetProblems().size() > kMostProblems)
        return "a mistake is told in " + std::to_string(error.GetProblems().size()) + " problems";
    for (const tool::InputProblem& problem : error.GetProblems()) {
        if (problem.text.empty())
            return "a problem at \"" + problem.place + "\" says nothing";
        const std::string line = tool::ToDisplayText(tool::InputError({problem}).what());
        if (std::any_of(line.begin(), line.end(),
                        [](char c) { return static_cast<unsigned char>(c) < ' '; }))
            return "a problem is not told in one line: " + line;
    }
    return "";
}

std::string FindFault(const tool::ToolModel& model)
{
    for (const std::string& note : model.notes) {
        if (note.empty())
            return "a note says nothing";
    }
    const std::string text = tool::WriteModelText(model);
    // Databases may hold names that no model file can keep.
    const bool isExact = text.find("\xEF\xBF\xBD") == std::string::npos;
    try {
        const tool::ToolModel again = tool::ReadModelText(text, "again.json");
        const std::string difference = isExact ? FindDifference(model, again) : "";
        if (!difference.empty())
            return "written and read again, it has other " + difference + ":\n" + text;
        return tool::WriteModelText(again) == text ? "" : "its text changes when written again";
    } catch (const tool::InputError& error) {
        return std::string("its own text cannot be read: ") + error.what() + '\n' + text;
    }
}

std::string FindReadingFault(const std::function<tool::ToolModel()>& read)
{
    try {
        return FindFault(read());
    } catch (const tool::InputError& error) {
        return FindFault(error);
    }
}

} // namespace qe::test
