#include "Toolkit/Import/Formats/CubeModel.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/CubeCatalog.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SqlCondition.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

class CubeReader
{
public:
    explicit CubeReader(std::span<SourceDocument> documents)
        : mDocuments(documents), mCatalog(documents, mLeftOut)
    {}

    DatabaseSchema Read()
    {
        const std::vector<Cube>& cubes = mCatalog.Get();
        for (const Cube& cube : cubes)
            mByName.emplace(cube.name, &cube);
        for (const Cube& cube : cubes)
            AddTable(cube);
        for (std::size_t i = 0; i < cubes.size(); ++i)
            for (const CubeJoin& join : cubes[i].joins)
                AddJoin(i, join);
        for (SourceDocument& document : mDocuments)
            ReadViews(document);
        for (std::string& note : mLeftOut.List())
            mSchema.notes.push_back(std::move(note));
        return std::move(mSchema);
    }

private:
    void AddTable(const Cube& cube)
    {
        constexpr std::string_view kWhole = "select * from ";
        SchemaTable table{.name = cube.name, .description = cube.description};
        table.source = ReadTableName(cube.table);
        if (ascii::ToLower(cube.query).starts_with(kWhole))
            table.source = ReadTableName(std::string_view(cube.query).substr(kWhole.size()));
        if (table.source.empty() && !(cube.table.empty() && cube.query.empty()))
            mLeftOut.Add("queries of cubes, which are called like them", cube.name);
        Names key;
        bool isKeyPlain = true;
        for (const CubeDimension& dimension : cube.dimensions) {
            const std::string column = ColumnOf(dimension, cube, mByName);
            if (column.empty() && !dimension.sql.empty())
                mLeftOut.Add("dimensions that are no columns", cube.name + '.' + dimension.name);
            if (!column.empty() && FindColumn(table.columns, column) == nullptr)
                table.columns.push_back({.name = column, .description = dimension.description});
            isKeyPlain = isKeyPlain && !(dimension.isKey && column.empty());
            if (dimension.isKey)
                key.push_back(column);
        }
        if (isKeyPlain && !key.empty())
            table.keys.push_back(std::move(key));
        mSchema.tables.push_back(std::move(table));
    }

    void AddJoin(std::size_t position, const CubeJoin& stated)
    {
        const auto target =
            mCatalog.Find(stated.target, *stated.document, ChildPointer(stated.pointer, "name"));
        if (!target)
            return;
        const Cube& cube = mCatalog.Get()[position];
        SchemaJoin join;
        join.left = {.table = position, .isMany = stated.isLeftMany};
        // Rows of the cube that states the join stay, whatever they meet.
        join.right = {.table = *target, .isMany = stated.isRightMany, .isOptional = true};
        SqlCondition condition;
        const std::string sql = ExpandMembers(stated.sql, cube, mByName, condition.problem);
        if (condition.problem.empty())
            condition = ReadSqlCondition(
                sql, [&](const Names& names) { return FindEnd(names, cube.name, stated.target); });
        if (!condition.problem.empty()) {
            // Without a condition rows would meet any other.
            SuggestEnds(condition, {cube.name, stated.target});
            mLeftOut.Add("joins whose condition cannot be kept", cube.name + " -> " + stated.target,
                         {.problems = &stated.document->problems,
                          .pointer = ChildPointer(stated.pointer, "sql"),
                          .text = std::move(condition.problem)});
            return;
        }
        TakeCondition(std::move(condition), join);
        EnsureColumns(join);
        if (!IsTurned(join))
            mSchema.joins.push_back(std::move(join));
    }

    static std::optional<EndColumn> FindEnd(const Names& names, const std::string& left,
                                            const std::string& right)
    {
        if (names.size() != 2 || (names.front() != left && names.front() != right))
            return std::nullopt;
        return EndColumn{.isLeft = names.front() == left, .column = names.back()};
    }

    void EnsureColumns(const SchemaJoin& join)
    {
        for (const SchemaJoinEnd* const end : {&join.left, &join.right})
            for (const std::string& column : end->columns)
                EnsureColumn(mSchema.tables[end->table], column);
        if (join.condition.empty())
            return;
        for (const EndColumn& column : ColumnsOfCondition(join).value_or(std::vector<EndColumn>{}))
            EnsureColumn(mSchema.tables[(column.isLeft ? join.left : join.right).table],
                         column.column);
    }

    /// Returns whether the join is stated from its other end already.
    bool IsTurned(const SchemaJoin& join)
    {
        const auto list = [](const SchemaJoinEnd& first, const SchemaJoinEnd& second) {
            std::set<std::pair<std::string, std::string>> pairs;
            for (std::size_t i = 0; i < first.columns.size(); ++i)
                pairs.emplace(first.columns[i], second.columns[i]);
            return pairs;
        };
        const auto turned = std::pair(join.right.table, join.left.table);
        const auto& earlier = mStated[turned];
        const bool isStated = std::any_of(earlier.begin(), earlier.end(), [&](std::size_t other) {
            const SchemaJoin& known = mSchema.joins[other];
            return TurnCondition(known.condition) == join.condition &&
                   list(known.right, known.left) == list(join.left, join.right);
        });
        if (!isStated)
            mStated[{join.left.table, join.right.table}].push_back(mSchema.joins.size());
        return isStated;
    }

    /// Returns the condition as the other end would state it.
    static std::string TurnCondition(const std::string& condition)
    {
        if (condition.empty())
            return condition;
        return WriteStatedCondition(
            {.condition = condition}, [](bool isLeft, const std::string& column) {
                return model::QualifiedName{isLeft ? kRightEnd : kLeftEnd, column};
            });
    }

    void ReadViews(SourceDocument& document)
    {
        if (document.syntax == ESyntax::JavaScript)
            return;
        JsonObject top(document.Top(), document.problems);
        for (const PlacedJson& view : ReadEntries(top, "views", document.problems)) {
            JsonObject object(view, document.problems);
            const std::string name = object.GetText("name", EPresence::Required);
            for (const PlacedJson& part : ReadEntries(object, "cubes", document.problems)) {
                JsonObject path(part, document.problems);
                ReadPath(document, name, path.GetText("join_path"),
                         ChildPointer(part.pointer, "join_path"));
            }
        }
    }

    /// A path through several cubes is how the view prefers to join them.
    void ReadPath(SourceDocument& document, const std::string& view, const std::string& path,
                  const std::string& pointer)
    {
        SchemaPreference preference{.reason = "view " + view + ": " + path};
        for (std::string_view rest = path; !rest.empty();) {
            const std::string name(rest.substr(0, rest.find('.')));
            rest.remove_prefix(std::min(name.size() + 1, rest.size()));
            const auto cube = mCatalog.Find(name, document, pointer);
            if (!cube)
                return;
            if (!preference.tables.empty() && !AddStep(preference, *cube)) {
                mLeftOut.Add("paths of views without a join", preference.reason);
                return;
            }
            preference.tables.push_back(*cube);
        }
        if (preference.tables.size() > 1)
            mSchema.preferences.push_back(std::move(preference));
    }

    bool AddStep(SchemaPreference& preference, std::size_t target)
    {
        const std::size_t source = preference.tables.back();
        for (const auto& ends : {std::pair(source, target), std::pair(target, source)}) {
            const auto found = mStated.find(ends);
            if (found != mStated.end() && !found->second.empty()) {
                preference.joins.push_back(found->second.front());
                return true;
            }
        }
        return false;
    }

    std::span<SourceDocument> mDocuments;
    LeftOut mLeftOut;
    CubeCatalog mCatalog;
    Cubes mByName;
    DatabaseSchema mSchema;
    /// The positions of the joins from one cube to another.
    std::map<std::pair<std::size_t, std::size_t>, std::vector<std::size_t>> mStated;
};

} // namespace

bool IsCubeModel(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    return document.syntax == ESyntax::JavaScript ||
           (document.syntax == ESyntax::Yaml && json.is_object() &&
            (json.contains("cubes") || (json.contains("views") && json["views"].is_array())));
}

DatabaseSchema ReadCubeModel(std::span<SourceDocument> documents)
{
    return CubeReader(documents).Read();
}

} // namespace qe::tool
