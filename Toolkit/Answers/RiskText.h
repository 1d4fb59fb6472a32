#ifndef TOOLKIT_ANSWERS_RISKTEXT_H
#define TOOLKIT_ANSWERS_RISKTEXT_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Risks.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// One thing that an answer risks, in words for the author of a report. Names in it are as the
/// model has them.
struct RiskRemark
{
    ERisk risk = ERisk::Multiplied;
    std::string text{};
    /// What to do about it; may be empty.
    std::string advice{};
};

/// Returns what to say about one of the risks of the answer's path; of dimensions too.
[[nodiscard]] RiskRemark Describe(const Answer& answer, const Multiplied& multiplied);
[[nodiscard]] RiskRemark Describe(const Answer& answer, const Risks& risks, const Lost& lost);
/// Returns what to say of the other candidates. The answer has an ambiguity.
[[nodiscard]] RiskRemark DescribeAmbiguity(const Answer& answer);

/// Returns what a reader must be warned of, in the order of ERisk: neither dimensions nor rows that
/// are kept. Nothing for a harmless path.
[[nodiscard]] std::vector<RiskRemark> ListPathRemarks(const Answer& answer, const Risks& risks);
/// Returns these, and what is to be said of the other candidates.
[[nodiscard]] std::vector<RiskRemark> ListRemarks(const Answer& answer, const Risks& risks);

/// Returns whose rows the answer has, where others are repeated for them as expected; else empty.
[[nodiscard]] std::string DescribeRows(const Answer& answer, const Risks& risks);
/// Returns what the statement joins by outer joins, and why; empty when it does nowhere.
[[nodiscard]] std::string DescribeOuterJoins(const Answer& answer, const Risks& risks);

/// Returns the word for a risk, such as "multiplied".
[[nodiscard]] std::string_view ToText(ERisk risk);
/// Returns the word as it begins a line, such as "Multiplied".
[[nodiscard]] std::string ToTitle(ERisk risk);

/// The prefix of remarks in SQL.
inline constexpr std::string_view kSqlComment = "-- ";

/// Writes each remark on a line, the advice on another, behind a prefix such as "-- ". Names are
/// made harmless for the terminal.
void WriteRemarks(std::ostream& out, const std::vector<RiskRemark>& remarks,
                  std::string_view prefix);

} // namespace qe::tool

#endif
