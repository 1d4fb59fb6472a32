#include "QEMainObjectPathSelector.h"

#include "AQE_I_JoinPathDescriptor.h"
#include "MainObject/PathTree.h"
#include "MainObject/PathTreeScore.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qe {

namespace {

using Ids = std::vector<amd_id>;
using Options = MainObjectPathSelector::Options;

/// Gives the query subjects from which the path fans out most: the subjects among them in their
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

MainObjectPathSelector::MainObjectPathSelector(amdi_gateway* gateway,
                                               AQE_RequestContext* requestContext,
                                               std::vector<amd_id> subjects, const Options& options)
    : mGateway(gateway),
      mOptions(options),
      mSubjects(std::move(subjects)),
      mRequestContext(requestContext)
{}

MainObjectPathSelector::~MainObjectPathSelector() = default;

std::uint32_t MainObjectPathSelector::SelectPath(
    const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors)
{
    std::vector<amd_id> path;
    for (std::uint32_t index = 0; index < descriptors.size(); ++index) {
        descriptors[index]->GetJoinPath(path);
        if (IsMainObjectPath(path))
            return index;
    }
    return 0;
}

std::uint32_t
MainObjectPathSelector::SelectAlternative(const std::vector<std::vector<amd_id>>& paths)
{
    const auto found =
        std::find_if(paths.begin(), paths.end(),
                     [this](const std::vector<amd_id>& path) { return IsMainObjectPath(path); });
    return found == paths.end() ? 0 : static_cast<std::uint32_t>(found - paths.begin());
}

void MainObjectPathSelector::AddTriple(const amd_id& a, const amd_id& b, const amd_id& c,
                                       bool clearFirst)
{
    const Triple triple{c, b, a};
    if (clearFirst)
        mTriples.clear();
    mTriples.push_back(triple);
}

bool MainObjectPathSelector::IsMainObjectPath(const std::vector<amd_id>& path)
{
    if (mSubjects.empty())
        return false;
    if (mSubjects.size() == 1) {
        mOneToOneObjects.push_back(mSubjects.front());
        mMainObject = mSubjects.front();
        mFound = true;
        return true;
    }
    const qe::PathJoins joins(mGateway, mRequestContext, path);
    const auto found = qe::FindMainObject(joins, path, mSubjects, mOptions);
    if (!found)
        return false;
    mOneToOneObjects.reserve(mOneToOneObjects.size() + found->oneToOneObjects.size());
    mPathObjects.reserve(mPathObjects.size() + found->pathObjects.size());
    mMainObject = found->id;
    mFound = true;
    for (const amd_id& object : found->oneToOneObjects) {
        if (std::find(mOneToOneObjects.begin(), mOneToOneObjects.end(), object) ==
            mOneToOneObjects.end())
            mOneToOneObjects.push_back(object);
    }
    mPathObjects.insert(mPathObjects.end(), found->pathObjects.begin(), found->pathObjects.end());
    return true;
}
