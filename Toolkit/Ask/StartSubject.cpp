#include "Toolkit/Ask/StartSubject.h"

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <set>
#include <vector>

namespace qe::tool {

amd_id FindStart(const model::Model& model, const Answer& answer, const std::string& place,
                 const std::string& start)
{
    NameResolver names(model);
    const std::vector<amd_id> found = names.ResolveSubjects(place, {start});
    names.ThrowProblems();
    std::set<amd_id> touched(answer.terminals.begin(), answer.terminals.end());
    touched.insert(answer.secondSet.begin(), answer.secondSet.end());
    for (const amd_id& id : GetAnsweredPath(answer)) {
        if (const AnswerJoin* const join = answer.FindJoin(id))
            touched.insert({join->left, join->right});
    }
    if (touched.count(found.front()) == 0)
        throw InputError(
            {{place, "The path does not touch \"" + start + "\"; it touches " +
                         JoinTexts(SubjectNames(model, {touched.begin(), touched.end()}))}});
    return found.front();
}

} // namespace qe::tool
