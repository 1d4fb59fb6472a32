#include "Toolkit/Import/Formats/CubeModel.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/CubeSchema.h"
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

/// So many cubes may extend each other in a row, and all may take over so many members.
constexpr std::size_t kMaximumHeritage = 64;
constexpr std::size_t kMaximumInherited = 1'000'000;

/// Whether many rows of the cube that states a join, and of its target, may meet one of the other.
using Relationship = std::pair<bool, bool>;

const JsonWords<Relationship>& ListRelationships()
{
    static const JsonWords<Relationship> kWords{
        {"one_to_one", {false, false}}, {"one_to_many", {false, true}},
        {"many_to_one", {true, false}}, {"belongs_to", {true, false}},
        {"belongsTo", {true, false}},   {"has_many", {false, true}},
        {"hasMany", {false, true}},     {"has_one", {false, false}},
        {"hasOne", {false, false}}};
    return kWords;
}

/// Reads the entries of a list that may stand empty.
std::vector<PlacedJson> GetEntries(JsonObject& object, const char* key, JsonProblems& problems)
{
    const PlacedJson list = object.Find(key);
    if (list.value == nullptr || list.value->is_null())
        return {};
    return ReadList(list, problems);
}

/// YAML takes a text without quotes for a number where it can.
std::string GetSql(JsonObject& object, const char* key, JsonProblems& problems)
{
    const PlacedJson sql = object.Find(key);
    if (sql.value == nullptr)
        return {};
    return sql.value->is_number() ? sql.value->dump() : ReadText(sql, problems).value_or("");
}

class CubeReader
{
public:
    explicit CubeReader(std::span<SourceDocument> documents) : mDocuments(documents) {}

    DatabaseSchema Read()
    {
        for (SourceDocument& document : mDocuments)
            ReadDocument(document);
        for (std::size_t i = 0; i < mCubes.size(); ++i)
            Inherit(i);
        for (const Cube& cube : mCubes)
            mByName.emplace(cube.name, &cube);
        for (const Cube& cube : mCubes)
            AddTable(cube);
        for (std::size_t i = 0; i < mCubes.size(); ++i)
            for (const CubeJoin& join : mCubes[i].joins)
                AddJoin(i, join);
        for (SourceDocument& document : mDocuments)
            ReadViews(document);
        for (std::string& note : mLeftOut.List())
            mSchema.notes.push_back(std::move(note));
        return std::move(mSchema);
    }

private:
    void ReadDocument(SourceDocument& document)
    {
        mNeedsCode = mNeedsCode || !document.templates.empty();
        if (document.syntax == ESyntax::JavaScript) {
            TellCode(document);
            return;
        }
        JsonObject top(document.Top(), document.problems);
        for (const PlacedJson& cube : GetEntries(top, "cubes", document.problems))
            ReadCube(document, cube);
        top.Ignore({"views"});
        top.RejectMisspeltKeys();
    }

    /// Tells what a program would make: "cube(`orders`".
    void TellCode(const SourceDocument& document)
    {
        mNeedsCode = true;
        std::string_view rest = *document.text;
        for (std::size_t line = 1; !rest.empty(); ++line) {
            const std::string_view text = rest.substr(0, rest.find('\n'));
            for (const std::string_view call : {"cube(", "view("}) {
                if (text.starts_with(call) && text.size() > call.size() + 1) {
                    const char quote = text[call.size()];
                    const std::string_view name = text.substr(call.size() + 1);
                    mLeftOut.Add("cubes and views in JavaScript, which needs code",
                                 std::string(name.substr(0, name.find(quote))) + " (" +
                                     document.name + ':' + std::to_string(line) + ')');
                }
            }
            rest.remove_prefix(std::min(text.size() + 1, rest.size()));
        }
    }

    void ReadCube(SourceDocument& document, const PlacedJson& placed)
    {
        JsonProblems& problems = document.problems;
        JsonObject object(placed, problems);
        Cube cube{.name = object.GetText("name", EPresence::Required),
                  .description = object.GetText("description"),
                  .extends = object.GetText("extends"),
                  .table = object.GetText("sql_table"),
                  .query = object.GetText("sql"),
                  .document = &document,
                  .pointer = placed.pointer};
        for (const PlacedJson& dimension : GetEntries(object, "dimensions", problems))
            ReadDimension(problems, dimension, cube);
        for (const PlacedJson& join : GetEntries(object, "joins", problems))
            ReadJoin(document, join, cube);
        for (const PlacedJson& measure : GetEntries(object, "measures", problems))
            mLeftOut.Add("measures", JsonObject(measure, problems).GetText("name"));
        object.RejectMisspeltKeys();
        if (!mIndex.Add(cube.name, mCubes.size()))
            problems.Add(ChildPointer(placed.pointer, "name"),
                         "there is a cube of that name already: \"" + cube.name + '"');
        mCubes.push_back(std::move(cube));
    }

    static void ReadDimension(JsonProblems& problems, const PlacedJson& placed, Cube& cube)
    {
        JsonObject object(placed, problems);
        CubeDimension dimension{.name = object.GetText("name", EPresence::Required),
                                .sql = GetSql(object, "sql", problems),
                                .description = object.GetText("description"),
                                .isKey = object.GetBoolean("primary_key").value_or(false)};
        object.RejectMisspeltKeys();
        cube.dimensions.push_back(std::move(dimension));
    }

    static void ReadJoin(SourceDocument& document, const PlacedJson& placed, Cube& cube)
    {
        JsonProblems& problems = document.problems;
        JsonObject object(placed, problems);
        CubeJoin join{.target = object.GetText("name", EPresence::Required),
                      .sql = object.GetText("sql", EPresence::Required),
                      .document = &document,
                      .pointer = placed.pointer};
        const auto relationship = object.GetChoice("relationship", ListRelationships());
        if (relationship) {
            join.isLeftMany = relationship->first;
            join.isRightMany = relationship->second;
        } else if (!problems.IsReported(ChildPointer(placed.pointer, "relationship"))) {
            problems.Add(placed.pointer, "lacks the key \"relationship\"");
        }
        object.RejectMisspeltKeys();
        cube.joins.push_back(std::move(join));
    }

    /// Takes over what the cubes have that this one extends.
    void Inherit(std::size_t position)
    {
        Names path;
        std::vector<std::size_t> chain{position};
        while (!mCubes[chain.back()].extends.empty()) {
            const Cube& cube = mCubes[chain.back()];
            path.push_back(cube.extends);
            const auto parent =
                FindCube(cube.extends, *cube.document, ChildPointer(cube.pointer, "extends"));
            if (!parent)
                break;
            if (std::find(chain.begin(), chain.end(), *parent) != chain.end() ||
                chain.size() == kMaximumHeritage) {
                cube.document->problems.Add(ChildPointer(cube.pointer, "extends"),
                                            "leads around or too far: " + JoinFirstTexts(path, 5));
                break;
            }
            chain.push_back(*parent);
        }
        for (; chain.size() > 1; chain.pop_back())
            TakeOver(mCubes[chain.back()], mCubes[chain[chain.size() - 2]]);
    }

    void TakeOver(const Cube& from, Cube& into)
    {
        into.extends.clear();
        if (into.table.empty() && into.query.empty()) {
            into.table = from.table;
            into.query = from.query;
        }
        mInherited += from.dimensions.size() + from.joins.size();
        if (mInherited > kMaximumInherited)
            throw InputError({{into.document->name, "cubes take over more than " +
                                                        std::to_string(kMaximumInherited) +
                                                        " members of each other"}});
        std::set<std::string> own;
        for (const CubeDimension& dimension : into.dimensions)
            own.insert(dimension.name);
        for (const CubeDimension& dimension : from.dimensions)
            if (!own.contains(dimension.name))
                into.dimensions.push_back(dimension);
        own.clear();
        for (const CubeJoin& join : into.joins)
            own.insert(join.target);
        for (const CubeJoin& join : from.joins)
            if (!own.contains(join.target))
                into.joins.push_back(join);
    }

    /// What is not there may be what code would have made.
    std::optional<std::size_t> FindCube(const std::string& name, SourceDocument& document,
                                        const std::string& pointer)
    {
        const auto found = mIndex.Find(name);
        if (!found && mNeedsCode)
            mLeftOut.Add("uses of cubes that need code", name);
        else if (!found && !document.problems.IsReported(pointer))
            document.problems.Add(pointer, "there is no cube \"" + name + '"',
                                  mIndex.Nearest(name));
        return found;
    }

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
            FindCube(stated.target, *stated.document, ChildPointer(stated.pointer, "name"));
        if (!target)
            return;
        const Cube& cube = mCubes[position];
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
            mLeftOut.Add("joins whose condition cannot be kept",
                         cube.name + " -> " + stated.target + " (" +
                             stated.document->problems.ToPlace(stated.pointer) + ' ' +
                             condition.problem + ')');
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
        for (const PlacedJson& view : GetEntries(top, "views", document.problems)) {
            JsonObject object(view, document.problems);
            const std::string name = object.GetText("name", EPresence::Required);
            for (const PlacedJson& part : GetEntries(object, "cubes", document.problems)) {
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
            const auto cube = FindCube(name, document, pointer);
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
    std::vector<Cube> mCubes;
    Cubes mByName;
    SubjectIndex mIndex;
    /// Whether there is more than can be read.
    bool mNeedsCode = false;
    std::size_t mInherited = 0;
    DatabaseSchema mSchema;
    /// The positions of the joins from one cube to another.
    std::map<std::pair<std::size_t, std::size_t>, std::vector<std::size_t>> mStated;
    LeftOut mLeftOut;
};

} // namespace

bool IsCubeModel(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    return document.syntax == ESyntax::JavaScript ||
           (document.syntax == ESyntax::Yaml && json.is_object() &&
            ((json.contains("cubes") && json["cubes"].is_array()) ||
             (json.contains("views") && json["views"].is_array())));
}

DatabaseSchema ReadCubeModel(std::span<SourceDocument> documents)
{
    return CubeReader(documents).Read();
}

} // namespace qe::tool
