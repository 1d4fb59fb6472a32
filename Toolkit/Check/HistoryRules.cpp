// What past queries say about a model. Without a history there is nothing to find.

#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/History/JoinHistory.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Join = JoinHistory::Join;
using TablePair = std::pair<JoinHistory::Number, JoinHistory::Number>;

std::string ConditionOf(const JoinHistory& history, const Join& join)
{
    std::string text;
    for (const auto& [left, right] : join.pairs)
        text += (text.empty() ? "" : " and ") + history.GetColumns().GetColumn(left).name + " = " +
                history.GetColumns().GetColumn(right).name;
    return text;
}

std::string EndsOf(const JoinHistory& history, const Join& join)
{
    return history.GetColumns().GetTable(join.leftTable).displayName + " and " +
           history.GetColumns().GetTable(join.rightTable).displayName;
}

std::string Times(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " time" : " times");
}

/// Returns how many queries have something.
std::string Queries(std::size_t count)
{
    return count == 1 ? "one query has" : std::to_string(count) + " queries have";
}

std::vector<amd_id> PlaceOf(const JoinHistory& history, const Join& join)
{
    return {history.GetColumns().GetTable(join.leftTable).subject,
            history.GetColumns().GetTable(join.rightTable).subject};
}

} // namespace

RuleFindings FindMissingJoins(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const JoinHistory* const history = model.GetHistory();
    if (history == nullptr)
        return found;
    std::vector<const Join*> joins;
    for (const Join& join : history->GetJoins()) {
        if (history->IsOffered(join))
            joins.push_back(&join);
    }
    std::stable_sort(joins.begin(), joins.end(),
                     [](const Join* left, const Join* right) { return left->uses > right->uses; });
    for (const Join* const join : joins)
        Record(found, limits, [&] {
            return Finding{.place = PlaceOf(*history, *join),
                           .placeText = EndsOf(*history, *join),
                           .text = "People join " + EndsOf(*history, *join) + " on " +
                                   ConditionOf(*history, *join) + " (" + Times(join->uses) +
                                   " of " + std::to_string(history->CountTogether(*join)) +
                                   "), and the model does not.",
                           .advice = "Declare the relationship if it is meant."};
        });
    return found;
}

RuleFindings FindUnusedJoins(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const JoinHistory* const history = model.GetHistory();
    if (history == nullptr)
        return found;
    for (const Join& join : history->GetJoins()) {
        // Where nobody had both tables, nothing speaks against the join.
        if (!join.isDeclared || join.uses > 0 || history->CountTogether(join) == 0)
            continue;
        Record(found, limits, [&] {
            return Finding{.place = join.ids,
                           .placeText = model.NameOf(join.ids.front()),
                           .text = "Nobody uses the join " + model.NameOf(join.ids.front()) +
                                   ", though " + Queries(history->CountTogether(join)) + ' ' +
                                   EndsOf(*history, join) + '.',
                           .advice = "Remove the join, or see that it is not taken by chance."};
        });
    }
    return found;
}

RuleFindings FindDisputedPairs(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const JoinHistory* const history = model.GetHistory();
    if (history == nullptr)
        return found;
    std::map<TablePair, std::vector<const Join*>> joins;
    for (const Join& join : history->GetJoins()) {
        if (join.uses > 0)
            joins[{join.leftTable, join.rightTable}].push_back(&join);
    }
    for (auto& [tables, used] : joins) {
        if (used.size() < 2)
            continue;
        std::stable_sort(used.begin(), used.end(), [](const Join* left, const Join* right) {
            return left->uses > right->uses;
        });
        Record(found, limits, [&history = *history, &used = used] {
            std::string text = "People join " + EndsOf(history, *used.front()) + " in " +
                               std::to_string(used.size()) + " ways";
            const char* separator = ": ";
            for (const Join* const join : used) {
                text += separator + ConditionOf(history, *join) + " (" + Times(join->uses) + ")";
                separator = ", ";
            }
            return Finding{.place = PlaceOf(history, *used.front()),
                           .placeText = EndsOf(history, *used.front()),
                           .text = text + '.',
                           .advice = "Give each role a shortcut of its own, so that a request can "
                                     "say which one it means."};
        });
    }
    return found;
}

} // namespace qe::tool
