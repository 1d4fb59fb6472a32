#ifndef TOOLKIT_EVALUATE_HISTORYROUNDS_H
#define TOOLKIT_EVALUATE_HISTORYROUNDS_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/History/PastQuery.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace qe::tool {

class JoinHistory;

/// Which of the requests are the history of a request.
enum class EHistoryRound : std::uint8_t
{
    /// None.
    None,
    /// All others but those of the same text.
    LeaveOneOut,
    /// Those before it, less those of the same text.
    Replay,
};

/// Asks each request with the history that the round gives it. Models are extended once, by the
/// joins of all requests; what a request must not know is left out when it is asked.
class HistoryRounds
{
public:
    /// Refers to the models. `queries` are those of all requests, in order.
    HistoryRounds(EHistoryRound round, ModelSource& models, const std::vector<PastQuery>& queries);
    HistoryRounds(const HistoryRounds&) = delete;
    HistoryRounds& operator=(const HistoryRounds&) = delete;
    ~HistoryRounds();

    /// Returns the model to ask for the request at `position`, and takes from the question what
    /// its history does not offer. Requests are prepared in their order. Throws InputError when
    /// there is no such model.
    [[nodiscard]] const EvaluatedModel& Prepare(std::size_t position, Question& question);

private:
    struct Extended;

    [[nodiscard]] Extended& Get(const std::string& database);

    EHistoryRound mRound;
    ModelSource& mModels;
    const std::vector<PastQuery>& mQueries;
    std::map<const EvaluatedModel*, std::unique_ptr<Extended>> mExtended;
};

} // namespace qe::tool

#endif
