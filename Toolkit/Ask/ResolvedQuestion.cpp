#include "Toolkit/Ask/ResolvedQuestion.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Question.h"

#include <algorithm>
#include <set>
#include <span>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using IdSet = std::set<amd_id>;

IdSet ToSet(const Ids& ids)
{
    return {ids.begin(), ids.end()};
}

/// The lists of a question that only some operations read.
struct ListUse
{
    EOperation operation;
    bool joinPreferences = false;
    bool avoidedJoins = false;
    bool favouredSubjects = false;
    bool secondSet = false;
};

constexpr ListUse kListUses[] = {
    {.operation = EOperation::Path,
     .joinPreferences = true,
     .avoidedJoins = true,
     .favouredSubjects = true},
    {.operation = EOperation::BestPaths,
     .joinPreferences = true,
     .avoidedJoins = true,
     .favouredSubjects = true},
    {.operation = EOperation::JoinedSubjects},
    {.operation = EOperation::PathBetween,
     .joinPreferences = true,
     .avoidedJoins = true,
     .secondSet = true},
    {.operation = EOperation::BestPathsBetween,
     .joinPreferences = true,
     .avoidedJoins = true,
     .secondSet = true},
    {.operation = EOperation::TreeJoins, .joinPreferences = true, .avoidedJoins = true},
};

void RejectUnusedLists(const Question& question, NameResolver& names)
{
    const auto* const use =
        std::find_if(std::begin(kListUses), std::end(kListUses), [&question](const ListUse& entry) {
            return entry.operation == question.operation;
        });
    const auto reject = [&names](const char* place) {
        names.AddProblem({place, "The operation has no use for this list", {}});
    };
    if (!use->joinPreferences && !question.favouredJoins.empty())
        reject("favoured joins");
    if (!use->joinPreferences && !question.requiredJoins.empty())
        reject("required joins");
    if (!use->avoidedJoins && !question.avoidedJoins.empty())
        reject("avoided joins");
    if (!use->favouredSubjects && !question.favouredSubjects.empty())
        reject("favoured subjects");
    if (!use->secondSet && !question.secondSet.empty())
        reject("second set");
}

/// What is left of the model's subjects.
class NodeFilter
{
public:
    NodeFilter(const Restriction& restriction, NameResolver& names)
        : mOnly(ToSet(names.ResolveSubjects("only subjects", restriction.onlySubjects))),
          mWithout(ToSet(names.ResolveSubjects("subjects left out", restriction.withoutSubjects)))
    {}

    /// Keeps subjects that the question itself names.
    void Keep(const Ids& subjects, NameResolver& names)
    {
        for (const amd_id& subject : subjects) {
            mKept.insert(subject);
            if (mWithout.count(subject) != 0)
                names.AddProblem({"subjects left out",
                                  "A subject cannot be connected and left out: " + ToText(subject),
                                  {}});
        }
    }

    [[nodiscard]] Ids Apply(std::span<const amd_id> all) const
    {
        Ids nodes;
        for (const amd_id& id : all) {
            const bool isIn = mOnly.empty() || mOnly.count(id) != 0 || mKept.count(id) != 0;
            if (isIn && mWithout.count(id) == 0)
                nodes.push_back(id);
        }
        return nodes;
    }

private:
    IdSet mOnly;
    IdSet mWithout;
    IdSet mKept;
};

Ids SelectJoins(const model::Model& model, const Restriction& restriction, const Ids& nodes,
                NameResolver& names)
{
    const IdSet only = ToSet(names.ResolveJoins("only joins", restriction.onlyJoins));
    const IdSet without = ToSet(names.ResolveJoins("joins left out", restriction.withoutJoins));
    const auto isNode = [&nodes](const amd_id& id) {
        return std::binary_search(nodes.begin(), nodes.end(), id);
    };
    Ids joins;
    for (const amd_id& id : model.GetJoins()) {
        const model::ObjectRecord* const record = model.Find(id);
        const bool isIn = (only.empty() || only.count(id) != 0) && without.count(id) == 0;
        if (isIn && isNode(record->left) && isNode(record->right))
            joins.push_back(id);
    }
    return joins;
}

bool IsEmpty(const Restriction& restriction)
{
    return restriction.onlySubjects.empty() && restriction.withoutSubjects.empty() &&
           restriction.onlyJoins.empty() && restriction.withoutJoins.empty();
}

Ids EndsOf(const model::Model& model, const Ids& joins)
{
    Ids ends;
    for (const amd_id& join : joins) {
        ends.push_back(model.Find(join)->left);
        ends.push_back(model.Find(join)->right);
    }
    return ends;
}

} // namespace

const QuestionResolver::Candidates& QuestionResolver::GetAll()
{
    if (!mAll) {
        NameResolver names(mModel);
        const std::span<const amd_id> subjects = mModel.GetSubjects();
        mAll.emplace(Candidates{.nodes = Ids(subjects.begin(), subjects.end())});
        mAll->joins = SelectJoins(mModel, {}, mAll->nodes, names);
    }
    return *mAll;
}

ResolvedQuestion QuestionResolver::Resolve(const Question& question)
{
    NameResolver names(mModel);
    RejectUnusedLists(question, names);
    ResolvedQuestion resolved;
    resolved.subjects = names.ResolveSubjects("subjects", question.subjects);
    resolved.secondSet = names.ResolveSubjects("second set", question.secondSet);
    resolved.favouredJoins = names.ResolveJoins("favoured joins", question.favouredJoins);
    resolved.requiredJoins = names.ResolveJoins("required joins", question.requiredJoins);
    resolved.avoidedJoins = names.ResolveJoins("avoided joins", question.avoidedJoins);
    resolved.favouredSubjects = names.ResolveSubjects("favoured subjects", //
                                                      question.favouredSubjects);

    if (IsEmpty(question.restriction)) {
        resolved.nodes = GetAll().nodes;
        resolved.joins = GetAll().joins;
    } else {
        NodeFilter filter(question.restriction, names);
        filter.Keep(resolved.subjects, names);
        filter.Keep(resolved.secondSet, names);
        filter.Keep(EndsOf(mModel, resolved.requiredJoins), names);
        resolved.nodes = filter.Apply(mModel.GetSubjects());
        resolved.joins = SelectJoins(mModel, question.restriction, resolved.nodes, names);
    }
    names.ThrowProblems();
    return resolved;
}

} // namespace qe::tool
