// The rule about pairs of subjects that several equally cheap paths join.

#include "Toolkit/Check/Rules.h"

#include "Source/Rules/Cardinality.h"

#include "AQE_I_Refiner.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Check/CheapestPaths.h"
#include "Toolkit/Check/ModelGraph.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace qe::tool {

namespace {

/// The paths that are shown of one pair, and those that are read to find what decides.
constexpr std::size_t kShownPaths = 4;
constexpr std::size_t kReadPaths = 64;

using Path = std::vector<std::size_t>;

struct AmbiguousPair
{
    int weight;
    std::size_t from;
    std::size_t to;

    friend bool operator<(const AmbiguousPair& a, const AmbiguousPair& b)
    {
        return std::tie(a.weight, a.from, a.to) < std::tie(b.weight, b.from, b.to);
    }
};

/// Returns the greatest weight below one more ordinary join than allowed.
int MaximumWeight(const CheckLimits& limits)
{
    const int join = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeJoin);
    return (limits.pathJoins + 1) * join - 1;
}

class PairSearch
{
public:
    PairSearch(const ModelGraph& model, const CheckLimits& limits)
        : mModel(model), mLimits(limits), mPaths(model, MaximumWeight(limits))
    {}

    RuleFindings Run()
    {
        RuleFindings found;
        const std::size_t searched = CollectPairs();
        found.total = mPairs.size();
        std::sort(mPairs.begin(), mPairs.end());
        mPairs.resize(mLimits.findings.CountShown(mPairs.size()));
        for (const AmbiguousPair& pair : mPairs)
            found.findings.push_back(Describe(pair));
        if (searched < mModel.GetSubjects().size())
            found.notice = "Ambiguous paths were looked for from " + std::to_string(searched) +
                           " of " + std::to_string(mModel.GetSubjects().size()) +
                           " subjects only: the limit of steps was reached.";
        return found;
    }

private:
    /// Returns the number of subjects that were searched from.
    std::size_t CollectPairs()
    {
        const std::size_t subjects = mModel.GetSubjects().size();
        for (std::size_t from = 0; from < subjects; ++from) {
            if (mPaths.GetSteps() > mLimits.pathSteps)
                return from;
            mPaths.Search(from);
            for (const std::size_t to : mPaths.GetReached()) {
                if (from < to && mPaths.HasSeparatePaths(to))
                    mPairs.push_back({mPaths.GetWeight(to), from, to});
            }
        }
        return subjects;
    }

    Finding Describe(const AmbiguousPair& pair);
    [[nodiscard]] CheckedPath DescribePath(std::size_t from, const Path& path,
                                           const std::map<std::size_t, std::size_t>& uses) const;
    [[nodiscard]] std::string Advise(const AmbiguousPair& pair, const Path& path) const;

    const ModelGraph& mModel;
    const CheckLimits& mLimits;
    CheapestPaths mPaths;
    std::vector<AmbiguousPair> mPairs;
};

CheckedPath PairSearch::DescribePath(std::size_t from, const Path& path,
                                     const std::map<std::size_t, std::size_t>& uses) const
{
    CheckedPath described;
    described.text = mModel.NameOf(from);
    for (const std::size_t index : path) {
        const ModelJoin& join = mModel.GetJoins()[index];
        const bool isShortcutJoin = join.id.classCode == IdClassShortcutJoin;
        from = join.OtherEnd(from);
        described.joins.push_back(join.id);
        described.text += isShortcutJoin ? " -(shortcut)- " : " -[" + join.name + "]- ";
        described.text += mModel.NameOf(from);
        if (!isShortcutJoin && uses.at(index) == 1 && described.decidingJoin == amd_id()) {
            described.decidingJoin = join.id;
            described.decidingName = join.name;
        }
    }
    return described;
}

Finding PairSearch::Describe(const AmbiguousPair& pair)
{
    mPaths.Search(pair.from);
    const std::vector<Path> paths = mPaths.ListPaths(pair.to, kReadPaths);
    std::map<std::size_t, std::size_t> uses;
    for (const Path& path : paths) {
        for (const std::size_t join : path)
            ++uses[join];
    }
    Finding finding;
    finding.place = {mModel.GetSubjects()[pair.from], mModel.GetSubjects()[pair.to]};
    finding.placeText = mModel.NameOf(pair.from) + " - " + mModel.NameOf(pair.to);
    const std::string count = paths.size() < kReadPaths ? std::to_string(paths.size())
                                                        : "at least " + std::to_string(kReadPaths);
    finding.text = mModel.NameOf(pair.from) + " and " + mModel.NameOf(pair.to) + " are joined by " +
                   count + " equally cheap paths of weight " + std::to_string(pair.weight) + ".";
    finding.advice = Advise(pair, paths.front());
    for (std::size_t i = 0; i < std::min(paths.size(), kShownPaths); ++i)
        finding.paths.push_back(DescribePath(pair.from, paths[i], uses));
    return finding;
}

std::string PairSearch::Advise(const AmbiguousPair& pair, const Path& path) const
{
    const ModelJoin& last = mModel.GetJoins()[path.back()];
    const bool endsInMany = IsToMany(last.CardinalityAt(pair.to));
    const std::string dimension = mModel.NameOf(endsInMany ? pair.from : pair.to);
    std::string advice = "A request decides by favouring a join that only one of the paths uses. ";
    advice += path.size() == 1
                  ? "In the model, make a shortcut to " + dimension +
                        " for each role and let each join lead to its own"
                  : "In the model, make a shortcut to " + dimension + " for one of the paths";
    if (!mModel.GetModel().GetIds(IdClassFolder).empty() && path.size() > 1)
        advice += ", or keep the subjects of the path that is meant in one folder and switch "
                  "\"General Options/AdjustWeightByFolder\" on";
    return advice + '.';
}

} // namespace

RuleFindings FindAmbiguousPaths(const ModelGraph& model, const CheckLimits& limits)
{
    return PairSearch(model, limits).Run();
}

} // namespace qe::tool
