#include "Toolkit/Ask/DecisionSaver.h"

#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/ModelDecisions.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Model/DecisionNames.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonEdit.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using IdSet = std::set<amd_id>;

/// How often the decision is extended before it is given up.
constexpr int kMostRounds = 50;

[[noreturn]] void Fail(const std::string& text)
{
    throw InputError({{"--save", text}});
}

/// Returns the joins that a model can name, in order.
IdSet NamedJoins(const Ids& path)
{
    IdSet joins;
    for (const amd_id& join : path) {
        if (join.classCode != IdClassShortcutJoin)
            joins.insert(join);
    }
    return joins;
}

/// Returns the paths that are as cheap as the one that was taken, but for that one.
std::vector<IdSet> FindRivals(const Answer& answer, const IdSet& chosen)
{
    std::vector<IdSet> rivals;
    for (const Alternative& alternative : answer.alternatives) {
        IdSet joins = NamedJoins(alternative.joins);
        if (alternative.weight == answer.weight && joins != chosen)
            rivals.push_back(std::move(joins));
    }
    if (NamedJoins(answer.path) != chosen)
        rivals.push_back(NamedJoins(answer.path));
    return rivals;
}

/// Looks for a decision by asking with one after the other.
class DecisionSearch
{
public:
    explicit DecisionSearch(const ChoiceToSave& choice)
        : mChosen(NamedJoins(choice.answer.path)),
          mAsked(choice.answer.terminals),
          mModel(choice.model)
    {
        std::sort(mAsked.begin(), mAsked.end());
        mQuestion.subjects = choice.question.subjects;
        mDecision.reason = choice.reason;
        if (choice.scope == EDecisionScope::Subjects)
            mDecision.subjects = mAsked;
        mRivalsOfOld = Ask();
        mReplaces = 0 < std::erase_if(mModel.decisions, [this](const Decision& old) {
                        return old.subjects == mDecision.subjects;
                    });
    }

    std::optional<Decision> Find(const Answer& asked)
    {
        std::vector<IdSet> rivals = Ask();
        if (rivals.empty() && !mReplaces)
            return std::nullopt;
        Prefer(rivals);
        Prefer(mRivalsOfOld);
        Prefer(FindRivals(asked, mChosen));
        // A decision that is only given another reason.
        if (mDecision.preferred.empty())
            Prefer({IdSet()});
        for (int round = 0; round < kMostRounds; ++round) {
            rivals = Ask();
            if (rivals.empty())
                return mDecision;
            if (!Avoid(rivals))
                break;
        }
        const bool isDecided = !FindHoldingDecisions(mModel.decisions, mAsked).empty();
        Fail("The choice cannot be kept as preferred and avoided joins: asked again, the model "
             "answers " +
             JoinTexts(rivals.back(),
                       [this](const amd_id& join) { return JoinName(*mModel.model, join); }) +
             (isDecided ? ", and what else it decides for these subjects goes first" : ""));
    }

private:
    /// Returns what the model, with the decision, finds as good as the choice, or better.
    std::vector<IdSet> Ask()
    {
        ToolModel model = mModel;
        if (!mDecision.preferred.empty() || !mDecision.avoided.empty())
            model.decisions.push_back(mDecision);
        return FindRivals(tool::Ask(model, mQuestion), mChosen);
    }

    /// Prefers the joins of the choice that a rival does without.
    void Prefer(const std::vector<IdSet>& rivals)
    {
        for (const IdSet& rival : rivals) {
            for (const amd_id& join : mChosen) {
                if (rival.count(join) == 0)
                    Add(mDecision.preferred, join);
            }
        }
    }

    /// Avoids the joins of rivals that the choice does without. Returns whether that is new.
    bool Avoid(const std::vector<IdSet>& rivals)
    {
        bool isNew = false;
        for (const IdSet& rival : rivals) {
            for (const amd_id& join : rival) {
                if (mChosen.count(join) == 0)
                    isNew = Add(mDecision.avoided, join) || isNew;
            }
        }
        return isNew;
    }

    /// Adds a join in its order, unless it is there.
    static bool Add(Ids& joins, const amd_id& join)
    {
        const auto place = std::lower_bound(joins.begin(), joins.end(), join);
        if (place != joins.end() && *place == join)
            return false;
        joins.insert(place, join);
        return true;
    }

    IdSet mChosen;
    /// The subjects of the question, in order.
    Ids mAsked;
    /// Without the decision that the new one takes the place of.
    ToolModel mModel;
    Question mQuestion;
    Decision mDecision;
    bool mReplaces = false;
    /// What the model, with all its decisions, finds as good as the choice, or better.
    std::vector<IdSet> mRivalsOfOld;
};

} // namespace

std::optional<Decision> FindDecision(const ChoiceToSave& choice)
{
    if (!choice.answer.connected || choice.answer.path.empty())
        Fail("There is no path that could be saved");
    return DecisionSearch(choice).Find(choice.answer);
}

std::string AddDecision(const std::string& text, const ToolModel& model, const Decision& decision)
{
    const nlohmann::ordered_json json = ToJson(*model.model, {decision}).front();
    const auto old =
        std::find_if(model.decisions.begin(), model.decisions.end(),
                     [&](const Decision& each) { return each.subjects == decision.subjects; });
    if (old == model.decisions.end())
        return AppendElement(text, keys::kDecisions, json);
    return ReplaceElement(text, keys::kDecisions,
                          static_cast<std::size_t>(old - model.decisions.begin()), json);
}

} // namespace qe::tool
