// The rule about pairs of subjects that several equally cheap paths join.

#include "Toolkit/Check/Rules.h"

#include "Source/Rules/Cardinality.h"

#include "AQE_I_Refiner.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Ask/ModelDecisions.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Check/CheapestPaths.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <span>
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

/// Returns the paths that are the cheapest with the decisions for these ends.
std::vector<Path> KeepDecided(const ModelGraph& model, const std::vector<amd_id>& ends,
                              std::vector<Path> paths)
{
    std::map<amd_id, int> weights;
    for (const Decision* const decision :
         FindHoldingDecisions(model.GetToolModel().decisions, ends)) {
        for (const amd_id& join : decision->preferred)
            weights.emplace(
                join, AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136));
        for (const amd_id& join : decision->avoided)
            weights.emplace(join, AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone));
    }
    if (weights.empty())
        return paths;
    const auto weigh = [&](const Path& path) {
        int sum = 0;
        for (const std::size_t index : path) {
            const ModelJoin& join = model.GetJoins()[index];
            const auto decided = weights.find(join.id);
            sum += decided == weights.end() ? join.weight : decided->second;
        }
        return sum;
    };
    int least = std::numeric_limits<int>::max();
    for (const Path& path : paths)
        least = std::min(least, weigh(path));
    std::erase_if(paths, [&](const Path& path) { return weigh(path) > least; });
    return paths;
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
        std::sort(mPairs.begin(), mPairs.end());
        for (const AmbiguousPair& pair : mPairs)
            Record(pair, found);
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

    /// Adds the pair to what was found, unless the model decides.
    void Record(const AmbiguousPair& pair, RuleFindings& found);
    [[nodiscard]] Finding Describe(const AmbiguousPair& pair, const std::vector<Path>& paths) const;
    [[nodiscard]] CheckedPath DescribePath(std::size_t from, const Path& path,
                                           const std::map<std::size_t, std::size_t>& uses) const;
    [[nodiscard]] std::string Advise(const AmbiguousPair& pair,
                                     const std::vector<CheckedPath>& shown, const Path& path) const;

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

void PairSearch::Record(const AmbiguousPair& pair, RuleFindings& found)
{
    mPaths.Search(pair.from);
    const std::span<const amd_id> subjects = mModel.GetSubjects();
    std::vector<amd_id> ends{subjects[pair.from], subjects[pair.to]};
    std::sort(ends.begin(), ends.end());
    const std::vector<Path> paths =
        KeepDecided(mModel, ends, mPaths.ListPaths(pair.to, kReadPaths));
    if (paths.size() > 1)
        tool::Record(found, mLimits, [&] { return Describe(pair, paths); });
}

Finding PairSearch::Describe(const AmbiguousPair& pair, const std::vector<Path>& paths) const
{
    std::map<std::size_t, std::size_t> uses;
    std::set<std::size_t> passed{pair.from, pair.to};
    for (const Path& path : paths) {
        for (const std::size_t join : path) {
            ++uses[join];
            passed.insert({mModel.GetJoins()[join].left, mModel.GetJoins()[join].right});
        }
    }
    Finding finding;
    finding.place = {mModel.GetSubjects()[pair.from], mModel.GetSubjects()[pair.to]};
    finding.placeText = mModel.NameOf(pair.from) + " - " + mModel.NameOf(pair.to);
    finding.passed.assign(passed.begin(), passed.end());
    const std::string count = paths.size() < kReadPaths ? std::to_string(paths.size())
                                                        : "at least " + std::to_string(kReadPaths);
    finding.text = mModel.NameOf(pair.from) + " and " + mModel.NameOf(pair.to) + " are joined by " +
                   count + " equally cheap paths of weight " + std::to_string(pair.weight) + ".";
    for (std::size_t i = 0; i < std::min(paths.size(), kShownPaths); ++i)
        finding.paths.push_back(DescribePath(pair.from, paths[i], uses));
    finding.advice = Advise(pair, finding.paths, paths.front());
    return finding;
}

std::string PairSearch::Advise(const AmbiguousPair& pair, const std::vector<CheckedPath>& shown,
                               const Path& path) const
{
    const model::Model& model = mModel.GetModel();
    const auto subjectWord = [&](std::size_t position) {
        return ToShellWord(SubjectName(model, mModel.GetSubjects()[position]));
    };
    const auto decided = std::find_if(shown.begin(), shown.end(), [](const CheckedPath& each) {
        return each.decidingJoin != amd_id();
    });
    const std::string choice =
        decided == shown.end() ? "--without-join JOIN"
                               : "--favour " + ToShellWord(JoinName(model, decided->decidingJoin));
    std::string advice = "Decide which path is meant, for instance: qerefine path MODEL " +
                         subjectWord(pair.from) + ' ' + subjectWord(pair.to) + ' ' + choice +
                         " --save";
    if (path.size() == 1) {
        const ModelJoin& join = mModel.GetJoins()[path.front()];
        const bool endsInMany = IsToMany(join.CardinalityAt(pair.to));
        const std::string dimension = mModel.NameOf(endsInMany ? pair.from : pair.to);
        advice += ". Where reports need the others too, make a shortcut to " + dimension +
                  " for each role that one of the joins leads to";
    }
    return advice + '.';
}

} // namespace

RuleFindings FindAmbiguousPaths(const ModelGraph& model, const CheckLimits& limits)
{
    return PairSearch(model, limits).Run();
}

} // namespace qe::tool
