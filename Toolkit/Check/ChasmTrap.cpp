#include "Toolkit/Check/FactSets.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

#include <algorithm>

namespace qe::tool {

namespace {

constexpr std::size_t kShownNames = 5;

class MeetingPlaces
{
public:
    explicit MeetingPlaces(const ModelGraph& model) : mModel(model), mSets(model)
    {
        for (std::size_t i = 0; i < model.GetSubjects().size(); ++i)
            mCounts.push_back(mSets.FindFacts(i).size());
    }

    /// Facts meet at a subject unless they all meet at one above it already. Where subjects lie
    /// above each other in a circle, the least of them is told.
    [[nodiscard]] bool IsMeetingPlace(std::size_t subject) const
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
        return {{mModel.GetSubjects()[subject]},
                name,
                std::to_string(facts.size()) + " facts meet at " + name + ": " +
                    ListNames(mModel, facts, kShownNames) +
                    ". A path from one to another over it multiplies the rows of both.",
                "Ask for such facts in queries of their own and join the sums by the items of " +
                    name + "."};
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

} // namespace

RuleFindings FindChasmTraps(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const MeetingPlaces places(model);
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        if (!places.IsMeetingPlace(i))
            continue;
        if (++found.total <= limits.findings)
            found.findings.push_back(places.Describe(i));
    }
    return found;
}

} // namespace qe::tool
