#include "Toolkit/Import/Formats/WrenModel.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SqlCondition.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// Whether many rows of each end may meet one of the other.
struct JoinType
{
    bool isLeftMany;
    bool isRightMany;
};

class WrenReader
{
public:
    explicit WrenReader(SourceDocument& document)
        : mProblems(document.problems), mTop(document.Top(), mProblems, ENull::Absent)
    {}

    DatabaseSchema Read()
    {
        mSpace = {mTop.GetText("catalog"), mTop.GetText("schema")};
        for (const PlacedJson& model : mTop.GetList("models"))
            ReadModel(model);
        mModels = mSchema.tables.size();
        for (const PlacedJson& view : mTop.GetList("views"))
            AddTable(view);
        for (const PlacedJson& relationship : mTop.GetList("relationships"))
            ReadRelationship(relationship);
        NameSources();
        for (const PlacedJson& cube : mTop.GetList("cubes"))
            mLeftOut.Add("cubes", JsonObject(cube, mProblems, ENull::Absent).GetText("name"));
        mTop.RejectMisspeltKeys();
        for (std::string& note : mLeftOut.List())
            mSchema.notes.push_back(std::move(note));
        return std::move(mSchema);
    }

private:
    /// SQL that names tables of the database beside models of Wren could be run by neither.
    void NameSources()
    {
        const bool isPhysical = std::all_of(
            mIsPhysical.begin(), mIsPhysical.begin() + static_cast<std::ptrdiff_t>(mModels),
            [](bool is) { return is; });
        for (std::size_t i = 0; i < mSchema.tables.size(); ++i) {
            SchemaTable& table = mSchema.tables[i];
            if (!isPhysical || i >= mModels)
                table.source = {mSpace[0], mSpace[1], table.name};
            std::erase(table.source, "");
        }
    }

    SchemaTable& AddTable(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        SchemaTable table{.name = object.GetText("name", EPresence::Required)};
        table.description = ReadDescription(object);
        if (!mIndex.Add(table.name, mSchema.tables.size()))
            mProblems.Add(ChildPointer(json.pointer, "name"),
                          "there is a model or view of that name already: \"" + table.name + '"');
        mSchema.tables.push_back(std::move(table));
        mIsPhysical.push_back(false);
        mComputed.emplace_back();
        return mSchema.tables.back();
    }

    std::string ReadDescription(JsonObject& object)
    {
        const PlacedJson properties = object.Find("properties");
        return properties.value == nullptr
                   ? std::string()
                   : JsonObject(properties, mProblems, ENull::Absent).GetText("description");
    }

    void ReadModel(const PlacedJson& json)
    {
        SchemaTable& table = AddTable(json);
        JsonObject object(json, mProblems, ENull::Absent);
        if (const PlacedJson reference = object.Find("tableReference");
            reference.value != nullptr) {
            JsonObject parts(reference, mProblems, ENull::Absent);
            table.source = {parts.GetText("catalog"), parts.GetText("schema"),
                            parts.GetText("table", EPresence::Required)};
            mIsPhysical.back() = true;
        }
        for (const PlacedJson& column : object.GetList("columns"))
            ReadColumn(column, table);
        if (const PlacedJson key = object.Find("primaryKey"); key.value != nullptr)
            ReadKey(key, table);
        for (const PlacedJson& key : object.GetList("uniqueKeys"))
            ReadKey(key, table);
        for (const PlacedJson& rule : object.GetList("rowLevelAccessControls"))
            mLeftOut.Add("rules of which rows may be seen",
                         JsonObject(rule, mProblems, ENull::Absent).GetText("name"));
        object.RejectMisspeltKeys();
    }

    void ReadColumn(const PlacedJson& json, SchemaTable& table)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        const std::string name = object.GetText("name", EPresence::Required);
        // What uses a relationship is a way to another model, no column.
        if (object.Find("relationship").value != nullptr)
            return;
        table.columns.push_back({.name = name,
                                 .isNotNull = object.GetBoolean("notNull").value_or(false),
                                 .description = ReadDescription(object)});
        const PlacedJson expression = object.Find("expression");
        const bool isComputed = expression.value != nullptr && !expression.value->is_null() &&
                                ReadText(expression, mProblems).value_or(name) != name;
        if (isComputed)
            mComputed.back().insert(name);
    }

    /// A key is a column or a list of columns.
    void ReadKey(const PlacedJson& key, SchemaTable& table)
    {
        Names columns;
        const std::vector<PlacedJson> parts =
            key.value->is_array() ? ReadList(key, mProblems) : std::vector{key};
        for (const PlacedJson& part : parts) {
            const auto column = ReadText(part, mProblems);
            if (column && CheckColumn(table, *column, part.pointer))
                columns.push_back(*column);
        }
        if (columns.size() == parts.size() && !columns.empty())
            table.keys.push_back(std::move(columns));
    }

    bool CheckColumn(const SchemaTable& table, const std::string& column,
                     const std::string& pointer)
    {
        std::vector<std::string_view> known;
        for (const SchemaColumn& other : table.columns)
            known.push_back(other.name);
        if (std::find(known.begin(), known.end(), column) != known.end())
            return true;
        // That a model has none at all is one mistake.
        if (known.empty() && !mBare.insert(table.name).second)
            return false;
        mProblems.Add(pointer,
                      known.empty() ? '"' + table.name + "\" has no columns"
                                    : '"' + table.name + "\" has no column \"" + column + '"',
                      model::NearestNames(column, known));
        return false;
    }

    void ReadRelationship(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        SchemaJoin join{.name = object.GetText("name", EPresence::Required)};
        const auto type = object.GetChoice<JoinType>("joinType", {{"ONE_TO_ONE", {false, false}},
                                                                  {"one_to_one", {false, false}},
                                                                  {"ONE_TO_MANY", {false, true}},
                                                                  {"one_to_many", {false, true}},
                                                                  {"MANY_TO_ONE", {true, false}},
                                                                  {"many_to_one", {true, false}},
                                                                  {"MANY_TO_MANY", {true, true}},
                                                                  {"many_to_many", {true, true}}});
        if (!type && !mProblems.IsReported(ChildPointer(json.pointer, "joinType")))
            static_cast<void>(object.Find("joinType", EPresence::Required));
        const std::string sql = object.GetText("condition", EPresence::Required);
        const auto ends = ReadEnds(object);
        object.RejectMisspeltKeys();
        if (!type || !ends || sql.empty())
            return;
        join.left = {.table = ends->first, .isMany = type->isLeftMany};
        join.right = {.table = ends->second, .isMany = type->isRightMany};
        ReadCondition(sql, ChildPointer(json.pointer, "condition"), std::move(join));
    }

    std::optional<std::pair<std::size_t, std::size_t>> ReadEnds(JsonObject& object)
    {
        const PlacedJson models = object.Find("models", EPresence::Required);
        if (models.value == nullptr)
            return std::nullopt;
        const std::vector<PlacedJson> names = ReadList(models, mProblems);
        if (names.size() != 2 && !mProblems.IsReported(models.pointer))
            mProblems.Add(models.pointer, "must name two models");
        if (names.size() != 2)
            return std::nullopt;
        const auto left = FindModel(names[0]);
        const auto right = FindModel(names[1]);
        return left && right ? std::optional(std::pair(*left, *right)) : std::nullopt;
    }

    std::optional<std::size_t> FindModel(const PlacedJson& named)
    {
        const auto name = ReadText(named, mProblems);
        const auto found = name ? mIndex.Find(*name) : std::nullopt;
        if (name && !found && mIndex.IsComplete())
            mProblems.Add(named.pointer, "there is no model \"" + *name + '"',
                          mIndex.Nearest(*name));
        return found;
    }

    /// Without a condition rows would meet any other, so that one which cannot be read leaves no
    /// join.
    void ReadCondition(const std::string& sql, const std::string& pointer, SchemaJoin join)
    {
        std::size_t named = 0;
        const bool isSelf = join.left.table == join.right.table;
        SqlCondition condition =
            ReadSqlCondition(sql, [&](const Names& names) -> std::optional<EndColumn> {
                if (names.size() < 2)
                    return std::nullopt;
                const auto table = mIndex.Find(names[names.size() - 2]);
                const bool isLeft = table == join.left.table;
                if (!table || (!isLeft && table != join.right.table) ||
                    !CheckColumn(mSchema.tables[*table], names.back(), pointer))
                    return std::nullopt;
                // Of the two columns that a model compares with itself, the first is the left's.
                return EndColumn{.isLeft = isSelf ? named++ % 2 == 0 : isLeft,
                                 .column = names.back()};
            });
        if (isSelf && !condition.text.empty())
            condition.problem = "does not tell its ends apart";
        if (!condition.problem.empty()) {
            SuggestEnds(condition, {mSchema.tables[join.left.table].name,
                                    mSchema.tables[join.right.table].name});
            if (!mProblems.IsReported(pointer))
                mLeftOut.Add("relationships whose condition cannot be kept", join.name,
                             {.problems = &mProblems,
                              .pointer = pointer,
                              .text = std::move(condition.problem)});
            return;
        }
        TakeCondition(std::move(condition), join);
        NoteColumns(join);
        mSchema.joins.push_back(std::move(join));
    }

    /// A table whose columns are called otherwise in the database can only be asked through Wren.
    void NoteColumns(const SchemaJoin& join)
    {
        const auto note = [this](const SchemaJoinEnd& end, const std::string& column) {
            if (mComputed[end.table].contains(column))
                mIsPhysical[end.table] = false;
        };
        for (const SchemaJoinEnd* const end : {&join.left, &join.right})
            for (const std::string& column : end->columns)
                note(*end, column);
        if (join.condition.empty())
            return;
        for (const EndColumn& column : ColumnsOfCondition(join).value_or(std::vector<EndColumn>{}))
            note(column.isLeft ? join.left : join.right, column.column);
    }

    JsonProblems& mProblems;
    JsonObject mTop;
    /// Where Wren's own names of models are.
    Names mSpace;
    DatabaseSchema mSchema;
    SubjectIndex mIndex;
    /// By the positions of the tables: whether they are asked in the database as they are, and
    /// which of their columns are not in it under their names.
    std::vector<bool> mIsPhysical;
    /// How many of them are models; views come behind.
    std::size_t mModels = 0;
    std::vector<std::set<std::string>> mComputed;
    /// The tables of which it was told that they have no columns.
    std::set<std::string> mBare;
    LeftOut mLeftOut;
};

} // namespace

bool IsWrenModel(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    return json.is_object() && json.contains("models") && json["models"].is_array() &&
           (json.contains("relationships") ||
            (json.contains("catalog") && json.contains("schema")));
}

DatabaseSchema ReadWrenModel(std::span<SourceDocument> documents)
{
    return WrenReader(documents.front()).Read();
}

} // namespace qe::tool
