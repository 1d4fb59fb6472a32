#ifndef TOOLKIT_HISTORY_HISTORYCHOICE_H
#define TOOLKIT_HISTORY_HISTORYCHOICE_H

#include "Toolkit/Ask/PathAdvisor.h"

#include <memory>
#include <optional>
#include <utility>

namespace qe::tool {

class JoinHistory;

/// Chooses as people did: among the alternatives of least weight, the first of these that differs
/// decides.
/// 1. the joins that people used more often: the sum of ln(1 + uses), so that a join that nobody
///    used costs more than a rare one. A path of joins that were all used stays level while one
///    more use of its rarest join would make up the difference;
/// 2. fewer joins that are walked from one row to many, from where that happens least often;
/// 3. the keys, as without a history: fewer differing words, more column pairs, fewer optional
///    joins;
/// 4. fewer tables that hold the referring columns;
/// 5. referring columns that stand earlier in their tables;
/// 6. the ranking.
class HistoryChoice final : public PathAdvisor
{
public:
    explicit HistoryChoice(std::shared_ptr<const JoinHistory> history)
        : mHistory(std::move(history))
    {}

    [[nodiscard]] PathChoice Choose(const model::Model& model, const Answer& answer) const override;
    [[nodiscard]] std::optional<PastUse>
    FindPastUse(const model::Model& model, const Answer& answer, EExplain explain) const override;

private:
    /// Returns the choice among all alternatives of least weight but the one at `without`.
    [[nodiscard]] PathChoice ChooseWithout(const model::Model& model, const Answer& answer,
                                           std::optional<std::size_t> without) const;
    std::shared_ptr<const JoinHistory> mHistory;
};

} // namespace qe::tool

#endif
