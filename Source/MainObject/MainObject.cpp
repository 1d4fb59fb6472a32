#include "MainObject/MainObject.h"

#include "MainObject/PathTree.h"

#include <algorithm>
#include <iterator>

namespace qe {

namespace {

using Ids = std::vector<amd_id>;
using Options = MainObjectPathSelector::Options;

/// Returns the query subjects from which the path fans out most: the subjects among them in their
/// own order, then the others in id order.
Ids FindCandidates(const PathJoins& joins, const Ids& path, const Ids& subjects)
{
    // The tree starts at the first join of the path, which has to be readable.
    if (path.empty() || joins.GetCount() == 0 || joins.GetJoin(0).id != path.front())
        return {};
    const PathTree tree(joins.GetJoin(0).left, joins);
    std::set<amd_id> best = ScoreTree(tree, joins, EScoring::FindCandidates).best;
    Ids candidates;
    std::copy_if(subjects.begin(), subjects.end(), std::back_inserter(candidates),
                 [&](const amd_id& subject) { return best.count(subject) != 0; });
    for (const amd_id& subject : subjects)
        best.erase(subject);
    candidates.insert(candidates.end(), best.begin(), best.end());
    return candidates;
}

bool CanBeMainObject(const amd_id& candidate, const PathJoins& joins, const Options& options)
{
    return !options.checkOptional || joins.HasNoOptionalEnd(candidate);
}

} // namespace

std::optional<MainObject> FindMainObject(const PathJoins& joins, const Ids& path,
                                         const Ids& subjects, const Options& options)
{
    const Ids candidates =
        options.subjectsAreCandidates ? subjects : FindCandidates(joins, path, subjects);
    const EScoring scoring = options.checkOptional ? EScoring::TestWithOptional : EScoring::Test;
    std::set<amd_id> pathObjects;
    for (const amd_id& candidate : candidates) {
        if (!CanBeMainObject(candidate, joins, options))
            continue;
        if (!candidate.IsValid())
            return std::nullopt;
        const PathTree tree(candidate, joins);
        if (pathObjects.empty()) {
            pathObjects = tree.GetIds();
            if (std::any_of(subjects.begin(), subjects.end(),
                            [&](const amd_id& subject) { return pathObjects.count(subject) == 0; }))
                return std::nullopt;
        }
        // A many-to-many join ends the scoring, and what was scored before it decides.
        if (ScoreTree(tree, joins, scoring).maxScore == kRootScore)
            return MainObject{candidate, CollectOneToOne(tree, joins), pathObjects};
    }
    return std::nullopt;
}

} // namespace qe
