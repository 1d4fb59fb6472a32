#include "Toolkit/Import/Schema/StatedJoins.h"

#include "AQE_Expression.h"
#include "Engine/Expression/ParseReport.h"
#include "Engine/Expression/Printer.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

class JoinResolver
{
public:
    explicit JoinResolver(DatabaseSchema& schema) : mSchema(schema) {}

    void Resolve()
    {
        std::vector<SchemaJoin> stated = std::exchange(mSchema.joins, {});
        for (std::size_t i = 0; i < stated.size(); ++i) {
            if (Take(stated[i])) {
                mPositions[i] = mSchema.joins.size();
                mSchema.joins.push_back(std::move(stated[i]));
            }
        }
        TellPlaces();
        for (SchemaPreference& preference : mSchema.preferences)
            MovePreference(preference);
        for (const SchemaJoin& join : mSchema.joins)
            ++mParallel[{join.left.table, join.right.table}];
        for (SchemaJoin& join : mSchema.joins)
            GiveName(join);
    }

private:
    using ColumnPair = std::pair<std::string, std::string>;
    /// Both tables, the columns that are compared in ascending order, and the condition.
    using Signature = std::tuple<std::size_t, std::size_t, std::vector<ColumnPair>, std::string>;

    bool Take(SchemaJoin& join)
    {
        if (join.left.columns.size() != join.right.columns.size())
            return LeaveOut("whose ends have different numbers of columns", join);
        if (join.left.columns.empty() && join.condition.empty())
            return LeaveOut("that compares no columns", join);
        if (!SpellLike(TableOf(join.left), join.left.columns) ||
            !SpellLike(TableOf(join.right), join.right.columns) || !HasColumns(join))
            return LeaveOut("whose columns do not exist", join);
        // One that is used only where it is asked for is not the same as one that always is.
        return (join.isActive ? mActive : mInactive).insert(SignatureOf(join)).second ||
               LeaveOut("that is stated twice", join);
    }

    bool LeaveOut(const std::string& why, const SchemaJoin& join)
    {
        if (!join.pointer.empty())
            mPointers.emplace(mSchema.notes.size(), join.pointer);
        mSchema.notes.push_back("left out a join " + why + ": " + Describe(join));
        return false;
    }

    /// Lets the notes on joins say where these are stated.
    void TellPlaces()
    {
        std::set<std::string> pointers;
        for (const auto& [note, pointer] : mPointers)
            pointers.insert(pointer);
        if (pointers.empty() || !mSchema.findPlaces)
            return;
        const std::map<std::string, std::string> places = mSchema.findPlaces(pointers);
        for (const auto& [note, pointer] : mPointers)
            mSchema.notes[note] += " (" + places.at(pointer) + ')';
    }

    [[nodiscard]] const SchemaTable& TableOf(const SchemaJoinEnd& end) const
    {
        return mSchema.tables[end.table];
    }

    [[nodiscard]] std::string Describe(const SchemaJoin& join) const
    {
        const std::string ends = TableOf(join.left).title + " (" + JoinTexts(join.left.columns) +
                                 ") -> " + TableOf(join.right).title + " (" +
                                 JoinTexts(join.right.columns) + ")";
        return join.name.empty() ? ends : join.name + ", " + ends;
    }

    static bool SpellLike(const SchemaTable& table, Names& names)
    {
        for (std::string& name : names) {
            const SchemaColumn* const column = FindColumn(table.columns, name);
            if (column == nullptr)
                return false;
            name = column->name;
        }
        return true;
    }

    /// Returns whether the condition, if there is one, names columns that exist.
    [[nodiscard]] bool HasColumns(const SchemaJoin& join) const
    {
        if (join.condition.empty())
            return true;
        const auto columns = ColumnsOfCondition(join);
        return columns &&
               std::all_of(columns->begin(), columns->end(), [&](const EndColumn& named) {
                   const SchemaTable& table = TableOf(named.isLeft ? join.left : join.right);
                   return FindColumn(table.columns, named.column) != nullptr;
               });
    }

    /// The same for a join that is stated from its other end; conditions count as they are.
    static Signature SignatureOf(const SchemaJoin& join)
    {
        const bool isTurned =
            join.condition.empty() && std::tie(join.right.table, join.right.columns) <
                                          std::tie(join.left.table, join.left.columns);
        const SchemaJoinEnd& first = isTurned ? join.right : join.left;
        const SchemaJoinEnd& second = isTurned ? join.left : join.right;
        std::vector<ColumnPair> pairs;
        for (std::size_t i = 0; i < first.columns.size(); ++i)
            pairs.emplace_back(first.columns[i], second.columns[i]);
        std::sort(pairs.begin(), pairs.end());
        return {first.table, second.table, std::move(pairs), join.condition};
    }

    void MovePreference(SchemaPreference& preference) const
    {
        std::vector<std::size_t> moved;
        for (const std::size_t join : preference.joins) {
            if (const auto found = mPositions.find(join); found != mPositions.end())
                moved.push_back(found->second);
        }
        preference.joins = std::move(moved);
    }

    void GiveName(SchemaJoin& join)
    {
        std::string name = join.name;
        if (name.empty()) {
            name = TableOf(join.left).title + "-" + TableOf(join.right).title;
            if (mParallel[{join.left.table, join.right.table}] > 1 && !join.left.columns.empty())
                name += " (" + JoinTexts(TitlesOf(TableOf(join.left), join.left.columns)) + ")";
        }
        join.name = name;
        for (int number = 2; !mNames.insert(ascii::ToLower(join.name)).second; ++number)
            join.name = name + " (" + std::to_string(number) + ")";
    }

    DatabaseSchema& mSchema;
    std::set<Signature> mActive;
    std::set<Signature> mInactive;
    /// Where the joins that stay were before, and are now.
    std::map<std::size_t, std::size_t> mPositions;
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> mParallel;
    std::set<std::string> mNames;
    /// Where the joins of notes are stated, by the positions of the notes.
    std::map<std::size_t, std::string> mPointers;
};

/// Writes references to ends as references to columns of the model.
class EndPrinter final : public expression::Printer
{
public:
    EndPrinter(std::string& text, const ColumnWriter& writer) : Printer(text), mWriter(&writer) {}

protected:
    void PrintReference(const AQE_ExpressionNode& reference) override
    {
        const std::vector<I18NString> names = reference.GetNamePath();
        PrintText(model::ToReferenceText(
            (*mWriter)(names.front().ToStdString() == kLeftEnd, names.back().ToStdString())));
    }

private:
    const ColumnWriter* mWriter;
};

bool IsAnyNull(const DatabaseSchema& schema, const SchemaJoinEnd& end)
{
    const std::vector<SchemaColumn>& columns = schema.tables[end.table].columns;
    return end.columns.empty() ||
           std::any_of(end.columns.begin(), end.columns.end(), [&](const std::string& name) {
               const SchemaColumn* const column = FindColumn(columns, name);
               return column == nullptr || !column->isNotNull;
           });
}

model::CardinalityRange ToRange(bool isMany, bool isOptional)
{
    if (isMany)
        return isOptional ? model::kZeroToMany : model::kOneToMany;
    return isOptional ? model::kZeroToOne : model::kOneToOne;
}

} // namespace

void ResolveStatedJoins(DatabaseSchema& schema)
{
    JoinResolver(schema).Resolve();
}

JoinRanges RangesOf(const DatabaseSchema& schema, const SchemaJoin& join)
{
    const auto isMany = [&](const SchemaJoinEnd& end) {
        return end.isMany.value_or(!IsUnique(schema.tables[end.table], end.columns));
    };
    return {.left = ToRange(isMany(join.left), join.left.isOptional.value_or(true)),
            .right = ToRange(isMany(join.right),
                             join.right.isOptional.value_or(IsAnyNull(schema, join.left)))};
}

std::string WriteStatedCondition(const SchemaJoin& join, const ColumnWriter& writer)
{
    std::string text;
    if (!join.condition.empty()) {
        const std::unique_ptr<AQE_Expression> condition(
            AQE_Expression::Create(I18NString(join.condition), nullptr, I18NString(join.name), {}));
        EndPrinter(text, writer).Print(*condition);
        return text;
    }
    for (std::size_t i = 0; i < join.left.columns.size(); ++i)
        text += (i == 0 ? "" : " AND ") +
                model::ToReferenceText(writer(true, join.left.columns[i])) + " = " +
                model::ToReferenceText(writer(false, join.right.columns[i]));
    return text;
}

std::optional<std::vector<EndColumn>> ColumnsOfCondition(const SchemaJoin& join)
{
    const expression::ParseReport report = expression::FindReferences(I18NString(join.condition));
    if (report.error)
        return std::nullopt;
    std::vector<EndColumn> columns;
    for (const expression::NamedReference& reference : report.references) {
        if (reference.names.size() != 2)
            return std::nullopt;
        const std::string end = reference.names.front().ToStdString();
        if (end != kLeftEnd && end != kRightEnd)
            return std::nullopt;
        columns.push_back(
            {.isLeft = end == kLeftEnd, .column = reference.names.back().ToStdString()});
    }
    return columns;
}

} // namespace qe::tool
