#include "Toolkit/Ask/Ambiguity.h"

#include "AQE_I_Refiner.h"
#include "IdClass.h"
#include "Toolkit/Ask/NameResolver.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

/// The candidates that a turn is told for.
constexpr std::size_t kTurns = 2;

/// Reads from the notices of the library what its list of candidates lacks.
void ReadShortfall(const std::vector<std::string>& notices, Ambiguity& ambiguity)
{
    constexpr std::string_view kListed = "listed ";
    for (const std::string& notice : notices) {
        const std::string_view text = notice;
        if (!text.starts_with("Cheapest trees: ") && !text.starts_with("Spanning trees: "))
            continue;
        ambiguity.isUnproven = ambiguity.isUnproven || text.ends_with("not proven");
        if (text.ends_with("there are more"))
            ambiguity.total = "more";
        const std::size_t listed = text.find(kListed);
        const std::size_t of = text.find(" of ", listed);
        if (listed != std::string_view::npos && of != std::string_view::npos)
            ambiguity.total = text.substr(of + 4, text.find(',', of) - of - 4);
    }
}

/// Finds what tells one of several candidates from all others.
class TurnFinder
{
public:
    TurnFinder(const model::Model& model, const Answer& answer, std::size_t candidates)
        : mModel(model), mAnswer(answer)
    {
        for (const Alternative& alternative : std::span(answer.alternatives).first(candidates))
            mCandidates.emplace_back(alternative.joins.begin(), alternative.joins.end());
    }

    /// Returns nothing when no joins tell the candidate from the others.
    [[nodiscard]] std::optional<Turn> Find(std::size_t alternative) const
    {
        const int floor =
            AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136);
        Turn turn{.alternative = alternative};
        const auto isCheapened = [&](const amd_id& id) {
            const AnswerJoin* const join = mAnswer.FindJoin(id);
            return join != nullptr && join->weight > floor;
        };
        if (const auto joins = FindTelling(alternative, isCheapened))
            turn.favoured = NameJoins(*joins);
        else if (const auto any = FindTelling(alternative, [](const amd_id&) { return true; }))
            turn.required = NameJoins(*any);
        else
            return std::nullopt;
        return turn;
    }

private:
    /// Returns few of those joins of the candidate that no other has all of.
    template <typename Filter>
    [[nodiscard]] std::optional<Ids> FindTelling(std::size_t alternative,
                                                 const Filter& isUsable) const
    {
        std::vector<const std::set<amd_id>*> rest;
        for (std::size_t i = 0; i < mCandidates.size(); ++i) {
            if (i != alternative)
                rest.push_back(&mCandidates[i]);
        }
        Ids telling;
        while (!rest.empty()) {
            const amd_id* best = nullptr;
            std::ptrdiff_t fewest = static_cast<std::ptrdiff_t>(rest.size());
            for (const amd_id& id : mAnswer.alternatives[alternative].joins) {
                if (id.classCode == IdClassShortcutJoin || !isUsable(id))
                    continue;
                const auto count = std::count_if(rest.begin(), rest.end(), [&id](const auto* set) {
                    return set->count(id) != 0;
                });
                if (count < fewest) {
                    best = &id;
                    fewest = count;
                }
            }
            if (best == nullptr)
                return std::nullopt;
            telling.push_back(*best);
            std::erase_if(rest, [best](const auto* set) { return set->count(*best) == 0; });
        }
        return telling;
    }

    [[nodiscard]] std::vector<std::string> NameJoins(const Ids& joins) const
    {
        std::vector<std::string> names;
        for (const amd_id& join : joins)
            names.push_back(JoinName(mModel, join));
        return names;
    }

    const model::Model& mModel;
    const Answer& mAnswer;
    std::vector<std::set<amd_id>> mCandidates;
};

} // namespace

std::optional<Ambiguity> FindAmbiguity(const model::Model& model, const Answer& answer)
{
    if (answer.alternatives.empty())
        return std::nullopt;
    const auto isDearer = [&answer](const Alternative& alternative) {
        return alternative.weight != answer.alternatives.front().weight;
    };
    const auto end = std::find_if(answer.alternatives.begin(), answer.alternatives.end(), isDearer);
    Ambiguity ambiguity;
    ambiguity.equallyCheap = static_cast<std::size_t>(end - answer.alternatives.begin());
    ReadShortfall(answer.notices, ambiguity);
    if (ambiguity.equallyCheap < 2 && !ambiguity.IsCut())
        return std::nullopt;
    ambiguity.isArbitrary =
        answer.criterion == decision::kJoinNames || answer.criterion == decision::kOrder;
    const TurnFinder finder(model, answer, ambiguity.equallyCheap);
    for (std::size_t i = 0; i < ambiguity.equallyCheap && ambiguity.turns.size() < kTurns; ++i) {
        const auto turn = answer.chosen == i ? std::nullopt : finder.Find(i);
        if (turn)
            ambiguity.turns.push_back(*turn);
    }
    return ambiguity;
}

std::optional<Turn> FindTurn(const model::Model& model, const Answer& answer,
                             std::size_t alternative)
{
    return TurnFinder(model, answer, answer.ambiguity->equallyCheap).Find(alternative);
}

} // namespace qe::tool
