#include "Toolkit/Ask/PathKeys.h"

#include "Engine/Model/Model.h"
#include "Source/Rules/Cardinality.h"
#include "Toolkit/Ask/ColumnPairs.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <string>

namespace qe::tool {

namespace {

std::int64_t CountDifferingWords(const std::string& left, const std::string& right)
{
    const auto wordsOf = [](const std::string& name) {
        const std::vector<std::string> words = SplitWords(name);
        return std::set<std::string>(words.begin(), words.end());
    };
    const std::set<std::string> ofLeft = wordsOf(left);
    const std::set<std::string> ofRight = wordsOf(right);
    std::vector<std::string> differing;
    std::set_symmetric_difference(ofLeft.begin(), ofLeft.end(), ofRight.begin(), ofRight.end(),
                                  std::back_inserter(differing));
    return static_cast<std::int64_t>(differing.size());
}

/// Returns the end whose rows refer to those of the other: the one with many rows, or the one that
/// the other can do without. Where both look alike, nothing tells.
amd_id FindReferringEnd(const AnswerJoin& join)
{
    const bool isLeftMany = IsToMany(join.leftCardinality);
    const bool isRightMany = IsToMany(join.rightCardinality);
    if (isLeftMany != isRightMany)
        return isLeftMany ? join.left : join.right;
    const bool isLeftSure = IsExactlyOne(join.leftCardinality);
    const bool isRightSure = IsExactlyOne(join.rightCardinality);
    if (!isLeftMany && isLeftSure != isRightSure)
        return isLeftSure ? join.right : join.left;
    return {};
}

std::int64_t MiddleOf(std::span<const amd_id> items)
{
    return items.empty() ? 0 : (static_cast<std::int64_t>(items.size()) - 1) * kPositionParts / 2;
}

/// Returns where the item stands among those of its subject.
std::int64_t FindPosition(const model::Model& model, const amd_id& subject, const std::string& name)
{
    const std::span<const amd_id> items = model.GetItems(subject);
    const amd_id item = model.FindExact(model::ENameKind::Item, model.GetTarget(subject), name);
    const auto found = std::lower_bound(items.begin(), items.end(), item);
    if (found == items.end() || *found != item)
        return MiddleOf(items);
    return (found - items.begin()) * kPositionParts;
}

/// Returns the mean position of the columns of that end.
std::int64_t MeanPosition(const model::Model& model, const amd_id& end,
                          const std::vector<ColumnPair>& pairs)
{
    const model::QualifiedName subject = model.GetQualifiedName(end);
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (const ColumnPair& pair : pairs) {
        for (const Column* const column : {&pair.left, &pair.right}) {
            if (column->subject != subject)
                continue;
            sum += FindPosition(model, end, column->name);
            ++count;
        }
    }
    return count == 0 ? MiddleOf(model.GetItems(end)) : sum / count;
}

} // namespace

KeyMeasures::JoinKeys KeyMeasures::MeasureJoin(const AnswerJoin& join) const
{
    JoinKeys measured{.referringEnd = FindReferringEnd(join)};
    const std::vector<ColumnPair> pairs = FindColumnPairs(join.condition);
    PathKeys& keys = measured.keys;
    for (const ColumnPair& pair : pairs)
        keys.differingWords += CountDifferingWords(pair.left.name, pair.right.name);
    keys.pairs = static_cast<std::int64_t>(pairs.size());
    const bool isSure = IsExactlyOne(join.leftCardinality) || IsExactlyOne(join.rightCardinality);
    keys.optionalJoins = isSure ? 0 : 1;
    // Either end may refer: a position that favours neither.
    keys.positions =
        measured.referringEnd == amd_id()
            ? (MiddleOf(mModel.GetItems(join.left)) + MiddleOf(mModel.GetItems(join.right))) / 2
            : MeanPosition(mModel, measured.referringEnd, pairs);
    return measured;
}

const KeyMeasures::JoinKeys& KeyMeasures::Get(const AnswerJoin& join)
{
    const auto known = mJoins.find(join.id);
    return known != mJoins.end() ? known->second
                                 : mJoins.emplace(join.id, MeasureJoin(join)).first->second;
}

PathKeys KeyMeasures::Measure(const std::vector<amd_id>& path)
{
    PathKeys sum;
    std::set<amd_id> referring;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = mAnswer.FindJoin(id);
        if (join == nullptr)
            continue;
        const JoinKeys& measured = Get(*join);
        sum.differingWords += measured.keys.differingWords;
        sum.pairs += measured.keys.pairs;
        sum.optionalJoins += measured.keys.optionalJoins;
        sum.positions += measured.keys.positions;
        if (measured.referringEnd != amd_id())
            referring.insert(measured.referringEnd);
    }
    sum.referringTables = static_cast<std::int64_t>(referring.size());
    return sum;
}

namespace {

/// A join as it is walked from one subject to another.
struct Walk
{
    amd_id to;
    /// 1 when it leads from one row to many, this way and back.
    std::int64_t toMany = 0;
    std::int64_t backToMany = 0;
};

using Walks = std::map<amd_id, std::vector<Walk>>;

/// Returns the least number of one part of the path, and takes its subjects out.
std::int64_t CountInPart(Walks& walks)
{
    // Beginning at the other end of a join changes only how that join is walked.
    std::int64_t fromFirst = 0;
    std::int64_t least = 0;
    std::map<amd_id, std::int64_t> differences{{walks.begin()->first, 0}};
    std::vector<amd_id> open{walks.begin()->first};
    while (!open.empty()) {
        const amd_id subject = open.back();
        open.pop_back();
        const std::int64_t difference = differences.at(subject);
        least = std::min(least, difference);
        for (const Walk& walk : walks.at(subject)) {
            const std::int64_t behind = difference + walk.backToMany - walk.toMany;
            if (!differences.emplace(walk.to, behind).second)
                continue;
            fromFirst += walk.toMany;
            open.push_back(walk.to);
        }
    }
    for (const auto& [subject, difference] : differences)
        walks.erase(subject);
    return fromFirst + least;
}

} // namespace

std::int64_t CountWalksToMany(const Answer& answer, const std::vector<amd_id>& path)
{
    Walks walks;
    for (const amd_id& id : path) {
        const AnswerJoin* const join = answer.FindJoin(id);
        if (join == nullptr)
            continue;
        const std::int64_t toLeft = IsToMany(join->leftCardinality) ? 1 : 0;
        const std::int64_t toRight = IsToMany(join->rightCardinality) ? 1 : 0;
        walks[join->left].push_back({join->right, toRight, toLeft});
        walks[join->right].push_back({join->left, toLeft, toRight});
    }
    std::int64_t count = 0;
    while (!walks.empty())
        count += CountInPart(walks);
    return count;
}

} // namespace qe::tool
