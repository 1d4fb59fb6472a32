#include "Toolkit/Evaluate/HistoryRounds.h"

#include "Engine/Model/Model.h"
#include "Toolkit/History/HistoryChoice.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/PastJoins.h"
#include "Toolkit/Text/InputFile.h"

#include <optional>

namespace qe::tool {

/// A model with the past joins of all requests, and what they count at the moment.
struct HistoryRounds::Extended
{
    explicit Extended(const EvaluatedModel& model)
        : evaluated(model), history(std::make_shared<JoinHistory>(*model.tool.model))
    {}

    EvaluatedModel evaluated;
    std::shared_ptr<JoinHistory> history;
    /// The use of each request by its position.
    std::map<std::size_t, std::size_t> uses{};
    /// What the request before was not to know.
    std::optional<std::size_t> forgotten{};
};

HistoryRounds::HistoryRounds(EHistoryRound round, ModelSource& models,
                             const std::vector<PastQuery>& queries)
    : mRound(round), mModels(models), mQueries(queries)
{}

HistoryRounds::~HistoryRounds() = default;

HistoryRounds::Extended& HistoryRounds::Get(const std::string& database)
{
    const EvaluatedModel& model = mModels.Get(database);
    std::unique_ptr<Extended>& extended = mExtended[&model];
    if (extended != nullptr)
        return *extended;
    extended = std::make_unique<Extended>(model);
    JoinHistory& history = *extended->history;
    for (std::size_t position = 0; position < mQueries.size(); ++position) {
        // What joins nothing could not be read.
        if (mModels.AreOfOneModel(mQueries[position].database, database) &&
            !mQueries[position].pairs.empty())
            extended->uses.emplace(position, history.Add(mQueries[position]));
    }
    ToolModel& tool = extended->evaluated.tool;
    tool.model = AddPastJoins(*tool.model, history, EPastJoins::All);
    tool.advisor = std::make_shared<HistoryChoice>(extended->history);
    if (mRound == EHistoryRound::Replay) {
        for (std::size_t use = 0; use < history.GetUses().size(); ++use)
            history.Forget(use);
    }
    return *extended;
}

const EvaluatedModel& HistoryRounds::Prepare(std::size_t position, Question& question)
{
    const std::string& database = mQueries[position].database;
    if (mRound == EHistoryRound::None)
        return mModels.Get(database);
    Extended& extended = Get(database);
    JoinHistory& history = *extended.history;
    if (extended.forgotten)
        history.Remember(*extended.forgotten);
    extended.forgotten = extended.uses.at(position);
    history.Forget(*extended.forgotten);
    for (const JoinHistory::Join& join : history.GetJoins()) {
        if (!join.isDeclared && !join.ids.empty() && !history.IsOffered(join))
            question.restriction.withoutJoins.push_back(ToText(join.ids.front()));
    }
    return extended.evaluated;
}

} // namespace qe::tool
