#include "Toolkit/Answers/SqlTables.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "IdClass.h"
#include "Toolkit/Ask/SubjectGroups.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <utility>

namespace qe::tool {
namespace {

// PostgreSQL cuts identifiers there.
constexpr std::size_t kMaximumBytes = 63;

} // namespace

std::string QuoteIdentifier(std::string_view name)
{
    if (name.empty() || name.find('\0') != std::string_view::npos)
        throw InputError({{"sql", "SQL cannot hold an empty name, nor one with a zero in it: \"" +
                                      std::string(name) + '"'}});
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter;
        if (letter == '"')
            quoted += '"';
    }
    return quoted + '"';
}

std::string QuoteTableName(std::string_view source)
{
    std::string quoted;
    for (const std::string& part : model::ParseQualifiedName(source))
        quoted += (quoted.empty() ? "" : ".") + QuoteIdentifier(part);
    return quoted;
}

std::string AliasNames::Take(std::string_view wanted)
{
    std::string name(CutUtf8(wanted, kMaximumBytes));
    for (int number = 2; !mTaken.insert(model::FoldCase(name)).second; ++number) {
        const std::string suffix = ' ' + std::to_string(number);
        name = std::string(CutUtf8(wanted, kMaximumBytes - suffix.size())) + suffix;
    }
    return name;
}

namespace {

using Ids = std::vector<amd_id>;

/// Returns the subjects that need tables, those of the question first; some more than once.
Ids CollectSubjects(const Answer& answer, const Ids& path)
{
    Ids subjects = answer.terminals;
    // Of two sets only those are part of a statement that the path reaches.
    if (!answer.endPairs.empty())
        subjects = {answer.endPairs.front().first, answer.endPairs.front().second};
    for (const amd_id& id : path) {
        if (const AnswerJoin* const join = answer.FindJoin(id)) {
            subjects.push_back(join->left);
            subjects.push_back(join->right);
        }
    }
    return subjects;
}

std::string SourceOf(const model::Model& model, const amd_id& subject)
{
    const model::ObjectRecord* const record = model.Find(model.GetTarget(subject));
    if (record == nullptr)
        return {};
    return record->text.empty() ? QuoteIdentifier(record->name) : QuoteTableName(record->text);
}

} // namespace

SqlTables::SqlTables(const model::Model& model, const Answer& answer, const Ids& path)
{
    SubjectGroups same;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join != nullptr && id.classCode == IdClassShortcutJoin)
            same.AddJoin(join->left, join->right);
    }
    AliasNames aliases;
    for (const Ids& group : same.Split(CollectSubjects(answer, path))) {
        const amd_id& first = group.front();
        const std::string alias = aliases.Take(model.Find(first)->name);
        mTables.push_back({SourceOf(model, first), QuoteIdentifier(alias)});
        for (const amd_id& subject : group)
            mIndexes.emplace(subject, mTables.size() - 1);
    }
}

} // namespace qe::tool
