#ifndef TOOLKIT_ASK_RISKS_H
#define TOOLKIT_ASK_RISKS_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/JoinPlan.h"
#include "amd_id.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

struct Question;

/// What can mislead the reader of an answer. Each can be a reason to refuse it.
enum class ERisk : std::uint8_t
{
    /// Rows come several times, so that sums are too large.
    Multiplied,
    /// Rows are left out, so that sums are too small.
    Lost,
    /// Other paths are as cheap.
    Ambiguous,
};

/// The words for the risks, as options and output write them.
inline constexpr std::array<std::pair<std::string_view, ERisk>, 3> kRiskWords{
    {{"multiplied", ERisk::Multiplied}, {"lost", ERisk::Lost}, {"ambiguous", ERisk::Ambiguous}}};

/// Why rows of a subject come several times.
enum class EMultiplied : std::uint8_t
{
    /// It is a dimension of a subject that was asked for, for each row of which it stands there:
    /// what one expects, and no risk.
    Dimension,
    /// Fan trap: it is a fact, and comes once for each row of a detail of its own.
    Fan,
    /// Chasm trap: two facts meet at a dimension that they share.
    Chasm,
    /// A join is "many" at both ends.
    ManyToMany,
    /// The rows are those of a subject that the path only passes.
    Bridge,
    /// No join connects the parts of the statement.
    CrossProduct,
};

/// Returns the reason as output for programs writes it, such as "chasm".
[[nodiscard]] std::string_view ToText(EMultiplied reason);

/// Subjects whose rows the path repeats, and what does it.
struct Multiplied
{
    EMultiplied reason = EMultiplied::Dimension;
    /// Those of the question.
    std::vector<amd_id> subjects{};
    /// What they come several times for, whether the question names it or not. Dimension, bridge:
    /// whose rows the answer has. Fan: the details. Chasm: the facts that meet. Many-to-many: both
    /// ends. Cross product: one subject of each part.
    std::vector<amd_id> by{};
    /// Chasm: where they meet; else the empty id.
    amd_id at{};
    /// The joins that lead to a "many" side, in path order.
    std::vector<amd_id> joins{};
};

/// A subject of the question with rows for which something may be missing.
struct Lost
{
    amd_id subject{};
    /// Whether the statement keeps these rows, by outer joins.
    bool isKept = false;
    /// Whether it is a dimension of a subject that was asked for. That such a subject needs not
    /// all of its rows is what one expects, and no risk.
    bool isDimension = false;
    /// What may be missing, and the joins that lead there.
    std::vector<amd_id> missing{};
    std::vector<amd_id> joins{};
};

/// What a path risks, and the statement along it.
struct Risks
{
    /// Whose rows the answer has: one, or several that are combined.
    std::vector<amd_id> rowsOf{};
    /// Every subject of the question that is in none of these has each of its rows at most once.
    std::vector<Multiplied> multiplied{};
    /// Every subject of the question that is in none of these has each of its rows at least once.
    std::vector<Lost> lost{};
    /// The subjects that the statement joins by outer joins because they may be missing; not those
    /// that only lie behind them.
    std::vector<amd_id> outerJoined{};
    /// What the statement begins with; the empty id when there is none.
    amd_id start{};
    JoinOptions::EOuterJoins outerJoins = JoinOptions::EOuterJoins::ByCardinality;
};

/// Returns whether rows are repeated for another reason than being those of a dimension.
[[nodiscard]] bool IsMultiplied(const Risks& risks);
/// Returns whether the statement loses rows of more than dimensions.
[[nodiscard]] bool IsLost(const Risks& risks);

/// Returns the risks of the answer and of its path, each once.
[[nodiscard]] std::vector<ERisk> ListRisks(const Answer& answer, const Risks& risks);

/// Returns what the path risks when a statement joins it in this way. Takes about the square of the
/// length of the path.
[[nodiscard]] Risks FindRisks(const Answer& answer, const std::vector<amd_id>& path,
                              const JoinOptions& options);

/// Returns the path that an answer is read for: the chosen one, or the first of the best ones.
[[nodiscard]] const std::vector<amd_id>& GetAnsweredPath(const Answer& answer);

/// Returns what that path risks; nothing for a question that asks for no path, or that failed.
[[nodiscard]] Risks FindRisks(const Question& question, const Answer& answer,
                              const JoinOptions& options);

} // namespace qe::tool

#endif
