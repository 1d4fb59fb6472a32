#include "Toolkit/Agent/PathWarnings.h"

#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

constexpr std::size_t kNamesShown = 10;

Names NamesOfSubjects(const Answer& answer, std::span<const amd_id> subjects)
{
    Names names;
    for (const amd_id& subject : subjects)
        names.push_back(answer.NameOf(subject));
    return names;
}

std::string ShowNames(const Names& names)
{
    return JoinFirstTexts(names, kNamesShown);
}

std::string QuoteForAgent(const std::string& name)
{
    return nlohmann::json(name).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool IsAskedFor(const Answer& answer, const amd_id& subject)
{
    const auto isIn = [&subject](const std::vector<amd_id>& asked) {
        return std::find(asked.begin(), asked.end(), subject) != asked.end();
    };
    return isIn(answer.terminals) || isIn(answer.secondSet);
}

std::string MendChasm(const Answer& answer, const Multiplied& chasm)
{
    const std::string at = answer.NameOf(chasm.at);
    std::string text = "Aggregate " + ShowNames(NamesOfSubjects(answer, chasm.by)) +
                       " in a subquery each, grouped by the key of " + at +
                       ", and join the subqueries.";
    const auto passed =
        std::find_if(chasm.by.begin(), chasm.by.end(),
                     [&answer](const amd_id& subject) { return !IsAskedFor(answer, subject); });
    if (passed != chasm.by.end())
        text += " Or look for a path without " + answer.NameOf(*passed) +
                ", which was not asked for: call join_path with \"withoutSubjects\": [" +
                QuoteForAgent(answer.NameOf(*passed)) + "].";
    return text;
}

/// Returns what to do in place of summing over the rows that repeat.
std::string MendMultiplied(const Answer& answer, const Multiplied& multiplied)
{
    const std::string subjects = ShowNames(NamesOfSubjects(answer, multiplied.subjects));
    const std::string by = ShowNames(NamesOfSubjects(answer, multiplied.by));
    switch (multiplied.reason) {
    case EMultiplied::Dimension:
        return {};
    case EMultiplied::Fan:
        return "Aggregate " + by + " by the key of " + subjects +
               " in a subquery and join that, or query " + subjects + " alone.";
    case EMultiplied::Chasm:
        return MendChasm(answer, multiplied);
    case EMultiplied::ManyToMany:
        return "Aggregate " + subjects + " in a subquery before joining the rest.";
    case EMultiplied::Bridge:
        return "Count " + subjects + " with COUNT(DISTINCT key), or name " + by +
               " in \"subjects\" if its rows are meant.";
    case EMultiplied::CrossProduct:
        return "Query " + by + " one by one: nothing joins them.";
    }
    return {};
}

PathWarning Warn(const Answer& answer, const Multiplied& multiplied)
{
    PathWarning warning{.subjects = NamesOfSubjects(answer, multiplied.subjects),
                        .instead = MendMultiplied(answer, multiplied)};
    warning.text = "Do not use SUM, COUNT or AVG over columns of " + ShowNames(warning.subjects) +
                   " with this FROM clause; the numbers would be wrong. Reason: " +
                   Describe(answer, multiplied).text;
    return warning;
}

PathWarning Warn(const Answer& answer, const Risks& risks, const Lost& lost)
{
    PathWarning warning{.risk = ERisk::Lost,
                        .subjects = NamesOfSubjects(answer, {&lost.subject, 1})};
    warning.text = "Totals over " + ShowNames(warning.subjects) +
                   " would be too small: " + Describe(answer, risks, lost).text;
    warning.instead =
        risks.outerJoins == JoinOptions::EOuterJoins::Never
            ? "Call join_path without \"innerJoins\" to keep these rows."
            : "Call join_path with \"start\": " + QuoteForAgent(warning.subjects.front()) +
                  " to keep these rows.";
    return warning;
}

} // namespace

std::vector<PathWarning> ListPathWarnings(const Answer& answer, const Risks& risks)
{
    std::vector<PathWarning> warnings;
    for (const Multiplied& multiplied : risks.multiplied) {
        if (multiplied.reason != EMultiplied::Dimension)
            warnings.push_back(Warn(answer, multiplied));
    }
    for (const Lost& lost : risks.lost) {
        if (!lost.isKept && !lost.isDimension)
            warnings.push_back(Warn(answer, risks, lost));
    }
    return warnings;
}

nlohmann::ordered_json ToJson(const std::vector<PathWarning>& warnings)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const PathWarning& warning : warnings)
        list.push_back({{"risk", ToText(warning.risk)},
                        {"subjects", warning.subjects},
                        {"text", warning.text},
                        {"instead", warning.instead}});
    return list;
}

std::string ToText(const std::vector<PathWarning>& warnings)
{
    std::string text;
    for (const PathWarning& warning : warnings)
        text += "WARNING: " + ToDisplayText(warning.text) +
                "\nINSTEAD: " + ToDisplayText(warning.instead) + '\n';
    return text;
}

} // namespace qe::tool
