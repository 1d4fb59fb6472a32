#include "Toolkit/History/JoinHistory.h"

#include "Engine/Model/Model.h"

#include <algorithm>
#include <iterator>

namespace qe::tool {

namespace {

using Number = JoinHistory::Number;
using Pair = JoinHistory::Pair;

/// The columns that joins make equal.
class EqualColumns
{
public:
    void Join(const Pair& pair) { mParents[FindRoot(pair.first)] = FindRoot(pair.second); }
    [[nodiscard]] bool AreEqual(const Pair& pair)
    {
        return FindRoot(pair.first) == FindRoot(pair.second);
    }

private:
    Number FindRoot(Number column)
    {
        auto parent = mParents.emplace(column, column).first;
        while (parent->second != column) {
            column = parent->second;
            parent = mParents.emplace(column, column).first;
        }
        return column;
    }

    std::map<Number, Number> mParents;
};

bool Includes(std::span<const Pair> larger, std::span<const Pair> smaller)
{
    return std::includes(larger.begin(), larger.end(), smaller.begin(), smaller.end());
}

} // namespace

JoinHistory::JoinHistory(const model::Model& model) : mColumns(model)
{
    for (const amd_id& id : model.GetJoins())
        AddDeclared(model, id);
}

void JoinHistory::AddDeclared(const model::Model& model, const amd_id& id)
{
    const model::ObjectRecord* const record = model.Find(model.GetTarget(id));
    if (record == nullptr)
        return;
    PastQuery written;
    written.pairs = FindNamedPairs(model, record->left, record->right, record->text);
    Normalise(written);
    const Groups groups = GroupPairs(written);
    mUnknownNames.clear();
    // A condition on more than two tables, or on something else than columns, is nothing that
    // queries could be compared with.
    if (groups.size() != 1)
        return;
    const auto& [tables, pairs] = *groups.begin();
    const std::size_t join = FindOrAdd(tables, pairs);
    if (!mJoins[join].isDeclared)
        mDeclaredJoins[tables].push_back(join);
    mJoins[join].isDeclared = true;
    SetId(join, id);
}

std::size_t JoinHistory::FindOrAdd(const TablePair& tables, std::vector<Pair> pairs)
{
    const auto [known, isNew] = mJoinsByPairs.emplace(pairs, mJoins.size());
    if (isNew)
        mJoins.push_back(
            {.leftTable = tables.first, .rightTable = tables.second, .pairs = std::move(pairs)});
    return known->second;
}

void JoinHistory::SetId(std::size_t pastJoin, const amd_id& id)
{
    mJoins[pastJoin].ids.push_back(id);
    mJoinsById.emplace(id, pastJoin);
}

std::size_t JoinHistory::Add(const PastQuery& query)
{
    const auto [known, isNew] = mUsesByText.emplace(TextKey(query), mUses.size());
    if (!isNew)
        return known->second;
    Use& use = mUses.emplace_back();
    use.place = query.place;
    use.id = query.id;
    use.count = query.count;
    Fill(use, query);
    Count(use, true);
    return known->second;
}

void JoinHistory::Fill(Use& use, const PastQuery& query)
{
    std::string key = JoinsKey(query);
    if (const auto known = mUsesByJoins.find(key); known != mUsesByJoins.end()) {
        use.joins = mUses[known->second].joins;
        use.tables = mUses[known->second].tables;
        return;
    }
    use.joins = FindJoins(GroupPairs(query));
    use.tables = FindTables(query);
    if (mUnknownNames.empty())
        mUsesByJoins.emplace(std::move(key), mUses.size() - 1);
}

JoinHistory::Groups JoinHistory::GroupPairs(const PastQuery& query)
{
    Groups groups;
    for (const NamedPair& pair : query.pairs) {
        const auto left = mColumns.FindColumn(pair.first);
        const auto right = mColumns.FindColumn(pair.second);
        if (!left)
            ++mUnknownNames[pair.first];
        if (!right)
            ++mUnknownNames[pair.second];
        if (!left || !right)
            continue;
        Pair found{*left, *right};
        TablePair tables{mColumns.GetColumn(*left).table, mColumns.GetColumn(*right).table};
        if (tables.second < tables.first) {
            std::swap(tables.first, tables.second);
            std::swap(found.first, found.second);
        }
        // A table that is joined to itself is no join between subjects.
        if (tables.first != tables.second)
            groups[tables].push_back(found);
    }
    for (auto& [tables, pairs] : groups) {
        std::sort(pairs.begin(), pairs.end());
        pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    }
    return groups;
}

std::vector<Number> JoinHistory::FindTables(const PastQuery& query)
{
    std::vector<Number> tables;
    for (const std::string& name : query.tables) {
        if (const auto table = mColumns.FindTable(name))
            tables.push_back(*table);
        else
            ++mUnknownNames[name];
    }
    std::sort(tables.begin(), tables.end());
    tables.erase(std::unique(tables.begin(), tables.end()), tables.end());
    return tables;
}

std::vector<std::size_t> JoinHistory::FindUsed(const TablePair& tables,
                                               std::span<const Pair> pairs) const
{
    std::vector<std::size_t> written;
    if (const auto declared = mDeclaredJoins.find(tables); declared != mDeclaredJoins.end())
        std::copy_if(declared->second.begin(), declared->second.end(), std::back_inserter(written),
                     [&](std::size_t join) { return Includes(pairs, mJoins[join].pairs); });
    std::vector<std::size_t> used;
    std::copy_if(written.begin(), written.end(), std::back_inserter(used), [&](std::size_t join) {
        return std::none_of(written.begin(), written.end(), [&](std::size_t other) {
            return other != join && Includes(mJoins[other].pairs, mJoins[join].pairs);
        });
    });
    return used;
}

std::vector<std::size_t> JoinHistory::FindJoins(const Groups& groups)
{
    std::vector<std::size_t> joins;
    EqualColumns equal;
    for (const auto& [tables, pairs] : groups) {
        for (const std::size_t join : FindUsed(tables, pairs)) {
            joins.push_back(join);
            for (const Pair& pair : mJoins[join].pairs)
                equal.Join(pair);
        }
    }
    for (const auto& [tables, pairs] : groups) {
        std::vector<Pair> left;
        std::copy_if(pairs.begin(), pairs.end(), std::back_inserter(left),
                     [&equal](const Pair& pair) { return !equal.AreEqual(pair); });
        if (!left.empty())
            joins.push_back(FindOrAdd(tables, std::move(left)));
    }
    return joins;
}

void JoinHistory::Count(const Use& use, bool isRemembered)
{
    const auto count = [&](std::size_t& number) {
        number = isRemembered ? number + use.count : number - use.count;
    };
    for (const std::size_t join : use.joins)
        count(mJoins[join].uses);
    for (std::size_t second = 0; second < use.tables.size(); ++second) {
        for (std::size_t first = 0; first < second; ++first)
            count(mTogether[{use.tables[first], use.tables[second]}]);
    }
}

void JoinHistory::Forget(std::size_t use)
{
    if (!std::exchange(mUses[use].isForgotten, true))
        Count(mUses[use], false);
}

void JoinHistory::Remember(std::size_t use)
{
    if (std::exchange(mUses[use].isForgotten, false))
        Count(mUses[use], true);
}

std::size_t JoinHistory::FindJoin(const amd_id& join) const
{
    const auto found = mJoinsById.find(join);
    return found == mJoinsById.end() ? mJoins.size() : found->second;
}

std::size_t JoinHistory::CountUses(const amd_id& join) const
{
    const std::size_t found = FindJoin(join);
    return found == mJoins.size() ? 0 : mJoins[found].uses;
}

std::size_t JoinHistory::CountTogether(const Join& join) const
{
    const auto found = mTogether.find({join.leftTable, join.rightTable});
    return found == mTogether.end() ? 0 : found->second;
}

bool JoinHistory::IsOffered(const Join& join) const
{
    return !join.isDeclared && join.uses > 0 &&
           join.uses * kLeastShareOfPastJoins >= CountTogether(join);
}

} // namespace qe::tool
