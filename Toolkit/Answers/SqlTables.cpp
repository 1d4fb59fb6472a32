#include "Toolkit/Answers/SqlTables.h"

#include "IdClass.h"
#include "Toolkit/Answers/SqlIdentifier.h"
#include "Toolkit/Ask/SubjectGroups.h"

#include <utility>

namespace qe::tool {

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
