// Rules about joins that multiply rows: the chasm trap, where the rows of two facts meet, and the
// fan trap, where a fact is joined to details of its own.

#include "Toolkit/Check/Rules.h"

#include "Source/Rules/Cardinality.h"

#include "Toolkit/Check/ModelGraph.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

constexpr std::size_t kShownNames = 5;
/// With fewer dimensions of its own a subject is taken for a dimension in a snowflake.
constexpr std::size_t kDimensionsOfFact = 2;

/// Which facts lie above each subject. A fact is a subject that many-to-one joins lead away from
/// and none leads to; above a subject lies what is reached from it against the direction of
/// many-to-one joins.
class FactSets
{
public:
    explicit FactSets(const ModelGraph& model);

    /// Returns the subjects of which the subject is directly a dimension, in order, each once.
    [[nodiscard]] const std::vector<std::size_t>& GetDetails(std::size_t subject) const
    {
        return mDetails[subject];
    }
    /// Returns everything above the subject, itself included, in order.
    [[nodiscard]] std::vector<std::size_t> FindAbove(std::size_t subject) const;
    /// Returns the facts above the subject, in order.
    [[nodiscard]] std::vector<std::size_t> FindFacts(std::size_t subject) const;

private:
    std::vector<std::vector<std::size_t>> mDetails;
    std::vector<bool> mIsFact;
};

FactSets::FactSets(const ModelGraph& model)
    : mDetails(model.GetSubjects().size()), mIsFact(model.GetSubjects().size(), false)
{
    for (const ModelJoin& join : model.GetJoins()) {
        const bool leftIsMany = IsToMany(join.leftCardinality);
        if (leftIsMany == IsToMany(join.rightCardinality) || join.left == join.right)
            continue;
        const std::size_t fact = leftIsMany ? join.left : join.right;
        mDetails[join.OtherEnd(fact)].push_back(fact);
        mIsFact[fact] = true;
    }
    for (std::size_t i = 0; i < mDetails.size(); ++i) {
        std::vector<std::size_t>& details = mDetails[i];
        if (!details.empty())
            mIsFact[i] = false;
        std::sort(details.begin(), details.end());
        details.erase(std::unique(details.begin(), details.end()), details.end());
    }
}

std::vector<std::size_t> FactSets::FindAbove(std::size_t subject) const
{
    std::vector<bool> isSeen(mDetails.size(), false);
    std::vector<std::size_t> above{subject};
    isSeen[subject] = true;
    for (std::size_t next = 0; next < above.size(); ++next) {
        for (const std::size_t detail : mDetails[above[next]]) {
            if (!isSeen[detail])
                above.push_back(detail);
            isSeen[detail] = true;
        }
    }
    std::sort(above.begin(), above.end());
    return above;
}

std::vector<std::size_t> FactSets::FindFacts(std::size_t subject) const
{
    std::vector<std::size_t> facts = FindAbove(subject);
    std::erase_if(facts, [this](std::size_t member) { return !mIsFact[member]; });
    return facts;
}

/// The subjects at which facts meet.
class ChasmTraps
{
public:
    explicit ChasmTraps(const ModelGraph& model) : mModel(model), mSets(model)
    {
        for (std::size_t i = 0; i < model.GetSubjects().size(); ++i)
            mCounts.push_back(mSets.FindFacts(i).size());
    }

    /// Facts meet at a subject unless they all meet at one above it already. Where subjects lie
    /// above each other in a cycle, the first of them is reported.
    [[nodiscard]] bool IsTrap(std::size_t subject) const
    {
        if (mCounts[subject] < 2)
            return false;
        const std::vector<std::size_t>& details = mSets.GetDetails(subject);
        return std::none_of(details.begin(), details.end(), [this, subject](std::size_t detail) {
            return mCounts[detail] == mCounts[subject] &&
                   (detail < subject || !IsAbove(subject, detail));
        });
    }

    [[nodiscard]] Finding Describe(std::size_t subject) const
    {
        const std::vector<std::size_t> facts = mSets.FindFacts(subject);
        const std::string name = mModel.NameOf(subject);
        return {.place = {mModel.GetSubjects()[subject]},
                .placeText = name,
                .text = std::to_string(facts.size()) + " facts meet at " + name + ": " +
                        ListNames(mModel, facts, kShownNames) +
                        ". A path from one to another over it multiplies the rows of both.",
                .advice = "Ask for such facts in queries of their own and join the sums by the "
                          "items of " +
                          name + "; where the authors of reports know that, accept the finding."};
    }

private:
    [[nodiscard]] bool IsAbove(std::size_t subject, std::size_t below) const
    {
        const std::vector<std::size_t> above = mSets.FindAbove(below);
        return std::binary_search(above.begin(), above.end(), subject);
    }

    const ModelGraph& mModel;
    FactSets mSets;
    std::vector<std::size_t> mCounts;
};

/// The direct neighbours of a subject over joins that are "many" at one end only.
struct Neighbours
{
    /// The subject is at the "many" end.
    std::set<std::size_t> dimensions{};
    /// The other is.
    std::set<std::size_t> details{};
};

Neighbours FindNeighbours(const ModelGraph& model, std::size_t subject)
{
    Neighbours neighbours;
    for (const ModelGraph::Step& step : model.GetSteps(subject)) {
        const ModelJoin& join = model.GetJoins()[step.join];
        const bool isMany = IsToMany(join.CardinalityAt(subject));
        const bool toMany = IsToMany(join.CardinalityAt(step.subject));
        if (isMany && !toMany)
            neighbours.dimensions.insert(step.subject);
        if (toMany && !isMany)
            neighbours.details.insert(step.subject);
    }
    return neighbours;
}

Finding DescribeFanTrap(const ModelGraph& model, std::size_t subject, const Neighbours& neighbours)
{
    const std::string name = model.NameOf(subject);
    const std::vector<std::size_t> repeating(neighbours.details.begin(), neighbours.details.end());
    return {.place = {model.GetSubjects()[subject]},
            .placeText = name,
            .text = name + " has " + std::to_string(neighbours.dimensions.size()) +
                    " dimensions of its own, and a join repeats its rows for each row of " +
                    ListNames(model, repeating, kShownNames) + ".",
            .advice = "Where " + name +
                      " has measures, sum them before joining the details, or move them and its "
                      "dimensions there; where it has none, accept the finding."};
}

} // namespace

RuleFindings FindChasmTraps(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const ChasmTraps traps(model);
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        if (traps.IsTrap(i))
            Record(found, limits, [&] { return traps.Describe(i); });
    }
    return found;
}

RuleFindings FindFanTraps(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        const Neighbours neighbours = FindNeighbours(model, i);
        if (neighbours.dimensions.size() < kDimensionsOfFact || neighbours.details.empty())
            continue;
        Record(found, limits, [&] { return DescribeFanTrap(model, i, neighbours); });
    }
    return found;
}

} // namespace qe::tool
