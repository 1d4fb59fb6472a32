#include "Toolkit/Ask/PassedTables.h"

#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Ask/ColumnPairs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

std::string ToReference(const Column& column)
{
    model::QualifiedName name = column.subject;
    name.push_back(column.name);
    return model::ToReferenceText(name);
}

std::string ToCondition(const std::vector<ColumnPair>& pairs)
{
    std::string text;
    for (const ColumnPair& pair : pairs)
        text += (text.empty() ? "" : " AND ") + ToReference(pair.left) + " = " +
                ToReference(pair.right);
    return text;
}

/// Returns the text without what says nothing.
std::string Squeeze(std::string_view text)
{
    std::string squeezed;
    std::copy_if(text.begin(), text.end(), std::back_inserter(squeezed), [](char letter) {
        return letter != ' ' && letter != '\n' && letter != '(' && letter != ')';
    });
    std::transform(squeezed.begin(), squeezed.end(), squeezed.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return squeezed;
}

/// One join at a passed table, seen from there.
struct Spoke
{
    const AnswerJoin* join = nullptr;
    amd_id neighbour;
    BMT_I_Association::CardinalityRange atNeighbour{};
    BMT_I_Association::CardinalityRange atPassed{};
    /// The neighbour's column for each column of the passed table, by its name.
    std::map<std::string, Column> columns{};
};

class PathShortener
{
public:
    PathShortener(const model::Model& model, const Answer& answer, const std::vector<amd_id>& path)
        : mModel(model), mShortened{path, answer}
    {}

    [[nodiscard]] ShortenedPath Shorten()
    {
        while (SkipOne()) {}
        return std::move(mShortened);
    }

private:
    bool SkipOne();
    [[nodiscard]] bool IsPassed(const amd_id& subject) const;
    [[nodiscard]] std::vector<Spoke> FindSpokes(const amd_id& subject) const;
    /// Returns the join as seen from the subject; nothing when it is more than equal columns.
    [[nodiscard]] std::optional<Spoke> ReadSpoke(const AnswerJoin& join,
                                                 const amd_id& subject) const;
    [[nodiscard]] AnswerJoin Connect(const Spoke& left, const Spoke& right);
    void Replace(const std::vector<Spoke>& spokes);

    const model::Model& mModel;
    ShortenedPath mShortened;
    std::int32_t mLastNumber = 0;
};

bool PathShortener::IsPassed(const amd_id& subject) const
{
    const Answer& answer = mShortened.answer;
    const auto names = [&subject](const std::vector<amd_id>& subjects) {
        return std::find(subjects.begin(), subjects.end(), subject) != subjects.end();
    };
    return subject.classCode == IdClassQuerySubject && !names(answer.terminals) &&
           !names(answer.secondSet);
}

std::optional<Spoke> PathShortener::ReadSpoke(const AnswerJoin& join, const amd_id& subject) const
{
    const bool isLeft = join.left == subject;
    Spoke spoke{.join = &join,
                .neighbour = isLeft ? join.right : join.left,
                .atNeighbour = isLeft ? join.rightCardinality : join.leftCardinality,
                .atPassed = isLeft ? join.leftCardinality : join.rightCardinality};
    const std::vector<ColumnPair> pairs = FindColumnPairs(join.condition);
    if (spoke.neighbour == subject || join.id.classCode == IdClassShortcutJoin || pairs.empty() ||
        Squeeze(ToCondition(pairs)) != Squeeze(join.condition))
        return std::nullopt;
    const model::QualifiedName name = mModel.GetQualifiedName(subject);
    for (const ColumnPair& pair : pairs) {
        const bool isFirst = pair.left.subject == name;
        const Column& own = isFirst ? pair.left : pair.right;
        if (own.subject != name ||
            !spoke.columns.emplace(own.name, isFirst ? pair.right : pair.left).second)
            return std::nullopt;
    }
    return spoke;
}

std::vector<Spoke> PathShortener::FindSpokes(const amd_id& subject) const
{
    std::vector<Spoke> spokes;
    for (const amd_id& id : mShortened.joins) {
        const AnswerJoin* const join = mShortened.answer.FindJoin(id);
        if (join == nullptr || (join->left != subject && join->right != subject))
            continue;
        std::optional<Spoke> spoke = ReadSpoke(*join, subject);
        const auto sameColumns = [&spoke](const Spoke& other) {
            return std::equal(spoke->columns.begin(), spoke->columns.end(), other.columns.begin(),
                              other.columns.end(), [](const auto& left, const auto& right) {
                                  return left.first == right.first;
                              });
        };
        if (!spoke || (!spokes.empty() && !sameColumns(spokes.front())))
            return {};
        spokes.push_back(std::move(*spoke));
    }
    return spokes;
}

AnswerJoin PathShortener::Connect(const Spoke& left, const Spoke& right)
{
    std::vector<ColumnPair> pairs;
    for (const auto& [name, column] : left.columns)
        pairs.push_back({column, right.columns.at(name)});
    const auto combine = [](const Spoke& from, const Spoke& to) {
        return BMT_I_Association::CardinalityRange{
            std::min(from.atPassed.minimum, to.atNeighbour.minimum), to.atNeighbour.maximum};
    };
    AnswerJoin join;
    join.id = {std::numeric_limits<std::int32_t>::min(), IdClassSpecJoin, --mLastNumber};
    join.name =
        mShortened.answer.NameOf(left.neighbour) + '-' + mShortened.answer.NameOf(right.neighbour);
    join.left = left.neighbour;
    join.right = right.neighbour;
    join.condition = ToCondition(pairs);
    join.leftCardinality = combine(right, left);
    join.rightCardinality = combine(left, right);
    join.weight = left.join->weight + right.join->weight;
    return join;
}

void PathShortener::Replace(const std::vector<Spoke>& spokes)
{
    std::set<amd_id> gone;
    std::vector<AnswerJoin> direct;
    for (const Spoke& spoke : spokes)
        gone.insert(spoke.join->id);
    for (std::size_t spoke = 1; spoke < spokes.size(); ++spoke)
        direct.push_back(Connect(spokes.front(), spokes[spoke]));
    std::vector<amd_id>& joins = mShortened.joins;
    auto place = std::find_if(joins.begin(), joins.end(),
                              [&gone](const amd_id& id) { return gone.count(id) != 0; });
    const std::ptrdiff_t position = place - joins.begin();
    joins.erase(std::remove_if(joins.begin(), joins.end(),
                               [&gone](const amd_id& id) { return gone.count(id) != 0; }),
                joins.end());
    std::vector<amd_id> ids;
    for (const AnswerJoin& join : direct) {
        ids.push_back(join.id);
        mShortened.answer.joinsById.emplace(join.id, join);
    }
    joins.insert(joins.begin() + position, ids.begin(), ids.end());
}

bool PathShortener::SkipOne()
{
    std::set<amd_id> subjects;
    for (const amd_id& id : mShortened.joins) {
        if (const AnswerJoin* const join = mShortened.answer.FindJoin(id)) {
            subjects.insert(join->left);
            subjects.insert(join->right);
        }
    }
    for (const amd_id& subject : subjects) {
        if (!IsPassed(subject))
            continue;
        const std::vector<Spoke> spokes = FindSpokes(subject);
        if (spokes.size() < 2)
            continue;
        Replace(spokes);
        return true;
    }
    return false;
}

} // namespace

ShortenedPath SkipPassedTables(const model::Model& model, const Answer& answer,
                               const std::vector<amd_id>& path)
{
    return PathShortener(model, answer, path).Shorten();
}

} // namespace qe::tool
