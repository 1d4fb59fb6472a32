#include "Tests/Toolkit/PathRows.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Source/Rules/Cardinality.h"
#include "Tests/Toolkit/SqlRows.h"
#include "Toolkit/Ask/ColumnPairs.h"
#include "Toolkit/Sql/SqlNames.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace qe::test {

using namespace qe::tool;

namespace {

std::string QuoteName(const std::string& source)
{
    std::string quoted;
    for (const std::string& part : model::ParseQualifiedName(source))
        quoted += (quoted.empty() ? "" : ".") + QuoteIdentifier(part);
    return quoted;
}

bool IsRequired(const TableJoin& join, std::size_t end)
{
    return join.CardinalityAt(end).minimum != BMT_I_Association::CardinalityZero;
}

bool IsMany(const TableJoin& join, std::size_t end)
{
    return IsToMany(join.CardinalityAt(end));
}

} // namespace

PathRows::PathRows(const ToolModel& model, const PathTables& path)
    : mPath(path), mCounts(path.GetCount(), 0)
{
    std::set<std::string> sources;
    for (std::size_t table = 0; table < path.GetCount(); ++table) {
        const auto* const record =
            model.model->Find(model.model->GetTarget(path.GetSubjects(table).front()));
        mSources.push_back(record->text.empty() ? record->name : record->text);
        sources.insert(mSources.back());
    }
    for (const TableJoin& join : path.GetJoins())
        AddReference(join);
    mIsPossible = sources.size() == path.GetCount() && mReferences.size() + 1 == path.GetCount() &&
                  !HasConflicts();
    if (mIsPossible)
        CountAllRows();
}

void PathRows::AddReference(const TableJoin& join)
{
    Reference reference{&join, join.left, join.right};
    const bool swaps = IsMany(join, join.left) == IsMany(join, join.right)
                           ? IsRequired(join, join.left) && !IsRequired(join, join.right)
                           : IsMany(join, join.right);
    if (swaps)
        std::swap(reference.from, reference.to);
    const std::string& left = mSources[join.left];
    for (const ColumnPair& pair : FindColumnPairs(join.join->condition)) {
        const bool isFromFirst =
            (pair.left.subject.back() == left) == (reference.from == join.left);
        reference.columns.emplace_back((isFromFirst ? pair.left : pair.right).name,
                                       (isFromFirst ? pair.right : pair.left).name);
    }
    if (!reference.columns.empty())
        mReferences.push_back(reference);
}

bool PathRows::HasConflicts() const
{
    std::multiset<std::pair<std::size_t, std::string>> written;
    std::set<std::pair<std::size_t, std::string>> read;
    for (const Reference& reference : mReferences) {
        const bool isManyToMany = IsMany(*reference.join, reference.to);
        for (const auto& [from, to] : reference.columns) {
            written.emplace(reference.from, from);
            if (isManyToMany)
                written.emplace(reference.to, to);
            else
                read.emplace(reference.to, to);
        }
    }
    return std::any_of(written.begin(), written.end(), [&](const auto& column) {
        return written.count(column) > 1 || read.count(column) > 0;
    });
}

void PathRows::CountAllRows()
{
    // Half as many rows at each step down, and never less than a few.
    mCounts[0] = std::size_t{3} << mReferences.size();
    for (std::size_t known = 1; known < mCounts.size();) {
        for (const Reference& reference : mReferences) {
            const std::size_t from = reference.from;
            const std::size_t to = reference.to;
            if ((mCounts[from] == 0) == (mCounts[to] == 0))
                continue;
            ++known;
            const bool toMany = IsMany(*reference.join, to);
            const bool fromMany = IsMany(*reference.join, from);
            // One-to-one: most rows at the other end go without, where that is allowed.
            const bool leavesOut =
                !fromMany && !IsRequired(*reference.join, from) && IsRequired(*reference.join, to);
            if (mCounts[to] == 0)
                mCounts[to] = leavesOut             ? 3 * mCounts[from]
                              : toMany || !fromMany ? mCounts[from]
                                                    : std::max<std::size_t>(2, mCounts[from] / 2);
            else
                mCounts[from] = leavesOut             ? std::max<std::size_t>(1, mCounts[to] / 3)
                                : !toMany && fromMany ? 2 * mCounts[to] + 1
                                                      : mCounts[to];
        }
    }
}

std::vector<std::optional<std::size_t>> PathRows::DrawTargets(const Reference& reference,
                                                              std::size_t from, std::size_t to,
                                                              std::mt19937& random)
{
    const bool coversAll = IsRequired(*reference.join, reference.from);
    const bool mayBeNull = !IsRequired(*reference.join, reference.to);
    std::vector<std::size_t> order(to);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), random);
    // Some go without, where that is allowed: one, or all but one.
    const std::size_t drawn = coversAll || to == 1 ? to : random() % 2 == 0 ? to - 1 : 1;
    std::vector<std::optional<std::size_t>> targets(from);
    for (std::size_t row = 0; row < from; ++row) {
        if (!IsMany(*reference.join, reference.from)) {
            const bool mayLeaveOut = mayBeNull && !coversAll;
            if (row < to && !(mayLeaveOut && row % 2 == 1))
                targets[row] = order[row];
        } else if (coversAll && row < to) {
            targets[row] = order[row];
        } else if (!(mayBeNull && (row + 1 == from || random() % 2 == 0))) {
            targets[row] = order[random() % drawn];
        }
    }
    std::shuffle(targets.begin(), targets.end(), random);
    return targets;
}

std::size_t PathRows::DrawGroup(const Reference& reference, std::size_t group, std::size_t groups)
{
    if (group % 2 == 0)
        return group;
    if (!IsRequired(*reference.join, reference.to))
        return groups;
    return IsRequired(*reference.join, reference.from) ? group : group - 1;
}

SqliteDatabase PathRows::Make(std::mt19937& random) const
{
    std::vector<Values> tables(mSources.size());
    for (std::size_t table = 0; table < tables.size(); ++table) {
        for (std::size_t row = 0; row < mCounts[table]; ++row) {
            tables[table][kRowId].emplace_back(row);
            tables[table][kRowValue].emplace_back(1 + random() % 100);
        }
    }
    for (const Reference& reference : mReferences) {
        const std::size_t from = mCounts[reference.from];
        const std::size_t to = mCounts[reference.to];
        const bool isManyToMany = IsMany(*reference.join, reference.to);
        const auto targets = isManyToMany ? std::vector<std::optional<std::size_t>>()
                                          : DrawTargets(reference, from, to, random);
        // Many-to-many: two rows of each meet each other, and some perhaps none.
        const std::size_t groups = std::max<std::size_t>(2, to / 2);
        // In an order of its own for each join, or the same rows would go without at all of them.
        std::vector<std::size_t> places(to);
        std::iota(places.begin(), places.end(), std::size_t{0});
        if (isManyToMany)
            std::shuffle(places.begin(), places.end(), random);
        for (const auto& [fromColumn, toColumn] : reference.columns) {
            auto& keys = tables[reference.to][toColumn];
            keys.clear();
            for (const std::size_t place : places)
                keys.emplace_back(isManyToMany ? place % groups : place);
            auto& values = tables[reference.from][fromColumn];
            for (std::size_t row = 0; row < from; ++row) {
                if (isManyToMany)
                    values.emplace_back(DrawGroup(reference, row % groups, groups));
                else
                    values.push_back(targets[row] ? std::optional<long>(*targets[row])
                                                  : std::nullopt);
            }
        }
    }
    std::string script = "BEGIN;";
    for (std::size_t table = 0; table < tables.size(); ++table) {
        std::string columns;
        for (const auto& [name, values] : tables[table])
            columns += (columns.empty() ? "" : ", ") + QuoteIdentifier(name);
        const std::string source = QuoteName(mSources[table]);
        script += "CREATE TABLE " + source + '(' + columns + ");";
        for (std::size_t row = 0; row < mCounts[table]; ++row) {
            std::string line;
            for (const auto& [name, values] : tables[table])
                line += (line.empty() ? "" : ", ") +
                        (values[row] ? std::to_string(*values[row]) : "NULL");
            script += "INSERT INTO " + source + " VALUES (" + line + ");";
        }
    }
    SqliteDatabase database = SqliteDatabase::OpenMemory();
    RunSql(database, script + "COMMIT;");
    return database;
}

} // namespace qe::test
