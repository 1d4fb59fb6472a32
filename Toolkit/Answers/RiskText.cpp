#include "Toolkit/Answers/RiskText.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;

/// Returns "A", "A and B" or "A, B and C".
std::string ListNames(const Answer& answer, const Ids& subjects, std::string_view lastWord = "and")
{
    std::string text;
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        const bool isLast = i + 1 == subjects.size();
        text += i == 0 ? "" : isLast ? ' ' + std::string(lastWord) + ' ' : ", ";
        text += answer.NameOf(subjects[i]);
    }
    return text;
}

Ids ListUnasked(const Answer& answer, const Ids& subjects)
{
    Ids unasked;
    for (const amd_id& subject : subjects) {
        const auto isIt = [&](const Ids& asked) {
            return std::find(asked.begin(), asked.end(), subject) != asked.end();
        };
        if (!isIt(answer.terminals) && !isIt(answer.secondSet))
            unasked.push_back(subject);
    }
    return unasked;
}

/// Returns the text as one word of a command line.
std::string QuoteWord(const std::string& text)
{
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.:-";
    if (!text.empty() && text.front() != '-' && text.find_first_not_of(kPlain) == std::string::npos)
        return text;
    std::string quoted = "'";
    for (const char letter : text)
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return quoted + '\'';
}

std::string WriteOption(std::string_view option, const std::string& name)
{
    return std::string(option) + ' ' + QuoteWord(name);
}

RiskRemark DescribeChasm(const Answer& answer, const Multiplied& chasm)
{
    const std::string at = answer.NameOf(chasm.at);
    RiskRemark remark;
    remark.text = ListNames(answer, chasm.by) + " meet at " + at + " (chasm trap): each row of " +
                  (chasm.by.size() == 2 ? "one comes with every row of the other that has"
                                        : "one comes with all rows of the others that have") +
                  " the same " + at + ", so that sums over " +
                  ListNames(answer, chasm.subjects, "or") + " are too large.";
    const Ids unasked = ListUnasked(answer, chasm.by);
    if (unasked.empty()) {
        remark.advice = "Sum " + ListNames(answer, chasm.by) +
                        " in queries of their own, each by " + at + ", and join the sums.";
        return remark;
    }
    remark.text += ' ' + ListNames(answer, unasked) + (unasked.size() == 1 ? " was" : " were") +
                   " not asked for.";
    remark.advice = "Look for a path without " + ListNames(answer, unasked, "or") + " (" +
                    WriteOption("--without", answer.NameOf(unasked.front())) + "), or sum " +
                    ListNames(answer, chasm.subjects) + " before joining the rest.";
    return remark;
}

RiskRemark DescribeFan(const Answer& answer, const Multiplied& fan)
{
    const std::string fact = ListNames(answer, fan.subjects);
    const std::string details = ListNames(answer, fan.by);
    return {.text = "each row of " + fact + " comes once for each of its rows in " + details +
                    " (fan trap), so that sums over " + fact + " are too large.",
            .advice = "Sum " + details + " by " + fact + " before joining them, or sum " + fact +
                      " in a query of its own."};
}

RiskRemark DescribeManyToMany(const Answer& answer, const Multiplied& multiplied)
{
    const AnswerJoin* const join = answer.FindJoin(multiplied.joins.front());
    return {.text = "the join " + (join->name.empty() ? ToText(join->id) : join->name) +
                    " is many-to-many: a row of " + ListNames(answer, multiplied.by, "or") +
                    " meets several rows of the other, so that sums over " +
                    ListNames(answer, multiplied.subjects, "or") + " are too large.",
            .advice =
                "Sum " + ListNames(answer, multiplied.subjects) + " before joining the rest."};
}

RiskRemark DescribeBridge(const Answer& answer, const Multiplied& bridge)
{
    const std::string passed = ListNames(answer, bridge.by);
    const std::string asked = ListNames(answer, bridge.subjects);
    const bool isOne = bridge.by.size() == 1;
    return {.text = "the path leads over " + passed + ", which " + (isOne ? "was" : "were") +
                    " not asked for, and has a row for each " +
                    (isOne ? "row" : "combination of the rows") + " of " + (isOne ? "it" : "them") +
                    ": rows of " + asked + " come several times.",
            .advice = "Ask for " + passed + " as well if " + (isOne ? "its" : "their") +
                      " rows are meant; otherwise count " + asked + " with DISTINCT."};
}

RiskRemark DescribeDimension(const Answer& answer, const Multiplied& dimension)
{
    return {.text = "rows of " + ListNames(answer, dimension.subjects) +
                    " come once for each row of " + ListNames(answer, dimension.by) + '.'};
}

RiskRemark DescribeCrossProduct(const Answer& answer, const Multiplied& product)
{
    return {.text = "no join connects " + ListNames(answer, product.by) +
                    ": the SQL joins each row of one to every row of the others.",
            .advice = "Ask for them in queries of their own, or add a join to the model."};
}

} // namespace

RiskRemark Describe(const Answer& answer, const Multiplied& multiplied)
{
    switch (multiplied.reason) {
    case EMultiplied::Fan:
        return DescribeFan(answer, multiplied);
    case EMultiplied::Chasm:
        return DescribeChasm(answer, multiplied);
    case EMultiplied::ManyToMany:
        return DescribeManyToMany(answer, multiplied);
    case EMultiplied::Bridge:
        return DescribeBridge(answer, multiplied);
    case EMultiplied::CrossProduct:
        return DescribeCrossProduct(answer, multiplied);
    case EMultiplied::Dimension:
        break;
    }
    return DescribeDimension(answer, multiplied);
}

namespace {

/// Describes subjects for which the same may be missing.
RiskRemark DescribeLost(const Answer& answer, const Risks& risks, const Ids& subjects,
                        const Lost& lost)
{
    RiskRemark remark{.risk = ERisk::Lost};
    remark.text = "rows of " + ListNames(answer, subjects) + " without " +
                  ListNames(answer, lost.missing, "or") +
                  (lost.isKept ? " stay, by outer joins." : " are left out.");
    if (lost.isKept)
        return remark;
    if (risks.outerJoins == JoinOptions::EOuterJoins::Never)
        remark.advice = "Outer joins keep them: leave out --inner.";
    else
        remark.advice = "The SQL begins with " + answer.NameOf(risks.start) +
                        ", whose rows it keeps; " +
                        WriteOption("--start", answer.NameOf(lost.subject)) + " keeps those of " +
                        answer.NameOf(lost.subject) + " instead.";
    return remark;
}

} // namespace

RiskRemark Describe(const Answer& answer, const Risks& risks, const Lost& lost)
{
    return DescribeLost(answer, risks, {lost.subject}, lost);
}

namespace {

/// Returns what decided, as the end of a sentence.
std::string DescribeDecision(const Answer& answer)
{
    if (answer.criterion == decision::kJoinNames)
        return "only the names of their joins decided, which is arbitrary";
    if (answer.criterion == decision::kOrder)
        return "only their order decided, which is arbitrary";
    if (answer.criterion == decision::kKeys)
        return "the columns that they join decided";
    if (answer.criterion == decision::kPositions)
        return "the places of the columns that they join decided";
    if (answer.criterion == decision::kNone)
        return "nothing chooses among them";
    return std::string(answer.criterion) + " decided";
}

std::string DescribeTurns(const Ambiguity& ambiguity)
{
    const auto writeTurn = [](const Turn& turn) {
        const auto write = [](std::string_view option) {
            return [option](const std::string& name) { return WriteOption(option, name); };
        };
        return "candidate " + std::to_string(turn.alternative + 1) + ": " +
               (turn.favoured.empty() ? JoinTexts(turn.required, write("--require"), " ")
                                      : JoinTexts(turn.favoured, write("--favour"), " "));
    };
    return ambiguity.turns.empty() ? "" : "To take " + JoinTexts(ambiguity.turns, writeTurn, "; ");
}

} // namespace

RiskRemark DescribeAmbiguity(const Answer& answer)
{
    const Ambiguity& ambiguity = *answer.ambiguity;
    RiskRemark remark{.risk = ERisk::Ambiguous, .advice = DescribeTurns(ambiguity)};
    const std::string listed = std::to_string(ambiguity.equallyCheap);
    if (!ambiguity.total.empty()) {
        const bool isKnown = ambiguity.total != "more";
        remark.text = "only " + listed + (isKnown ? " of " + ambiguity.total : "") +
                      " equally cheap paths were listed" + (isKnown ? "" : ", and there are more") +
                      ": the choice may be arbitrary.";
    } else if (ambiguity.equallyCheap > 1) {
        remark.text = listed + " paths are equally cheap, and " + DescribeDecision(answer) + '.';
    }
    if (ambiguity.isUnproven)
        remark.text += std::string(remark.text.empty() ? "" : " ") +
                       "the search ended before it was certain that no path is cheaper.";
    return remark;
}

std::vector<RiskRemark> ListPathRemarks(const Answer& answer, const Risks& risks)
{
    std::vector<RiskRemark> remarks;
    for (const Multiplied& multiplied : risks.multiplied) {
        if (multiplied.reason != EMultiplied::Dimension)
            remarks.push_back(Describe(answer, multiplied));
    }
    std::vector<Ids> told;
    for (const Lost& lost : risks.lost) {
        const bool isTold = std::find(told.begin(), told.end(), lost.missing) != told.end();
        if (lost.isKept || lost.isDimension || isTold)
            continue;
        Ids subjects;
        for (const Lost& other : risks.lost) {
            if (!other.isKept && !other.isDimension && other.missing == lost.missing)
                subjects.push_back(other.subject);
        }
        told.push_back(lost.missing);
        remarks.push_back(DescribeLost(answer, risks, subjects, lost));
    }
    return remarks;
}

std::vector<RiskRemark> ListRemarks(const Answer& answer, const Risks& risks)
{
    std::vector<RiskRemark> remarks = ListPathRemarks(answer, risks);
    if (answer.ambiguity)
        remarks.push_back(DescribeAmbiguity(answer));
    return remarks;
}

std::string DescribeRows(const Answer& answer, const Risks& risks)
{
    const bool isExpected =
        risks.rowsOf.size() == 1 && !risks.multiplied.empty() &&
        std::all_of(risks.multiplied.begin(), risks.multiplied.end(), [](const Multiplied& entry) {
            return entry.reason == EMultiplied::Dimension || entry.reason == EMultiplied::Fan;
        });
    return isExpected ? "one for each row of " + answer.NameOf(risks.rowsOf.front()) : "";
}

std::string DescribeOuterJoins(const Answer& answer, const Risks& risks)
{
    if (risks.outerJoined.empty())
        return {};
    return ListNames(answer, risks.outerJoined) +
           " may be missing; the SQL keeps the rows without " +
           (risks.outerJoined.size() == 1 ? "it" : "them");
}

std::string_view ToText(ERisk risk)
{
    const auto* const found =
        std::find_if(kRiskWords.begin(), kRiskWords.end(),
                     [risk](const auto& entry) { return entry.second == risk; });
    return found->first;
}

std::string ToTitle(ERisk risk)
{
    switch (risk) {
    case ERisk::Multiplied:
        return "Multiplied";
    case ERisk::Lost:
        return "Lost";
    case ERisk::Ambiguous:
        return "Ambiguous";
    }
    return "";
}

void WriteRemarks(std::ostream& out, const std::vector<RiskRemark>& remarks,
                  std::string_view prefix)
{
    for (const RiskRemark& remark : remarks) {
        out << prefix << ToTitle(remark.risk) << ": " << ToDisplayText(remark.text) << '\n';
        if (!remark.advice.empty())
            out << prefix << "  Way out: " << ToDisplayText(remark.advice) << '\n';
    }
}

} // namespace qe::tool
