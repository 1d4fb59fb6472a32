#include "Toolkit/Import/Formats/TabularModel.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Import/Formats/TableOrigin.h"
#include "Toolkit/Import/Formats/TmdlText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using nlohmann::json;

constexpr std::size_t kGuidSize = 36;

/// Returns whether the text ends in the digits by which tools tell apart what they have made.
bool EndsInGuid(std::string_view text)
{
    if (text.size() < kGuidSize)
        return false;
    const std::string_view guid = text.substr(text.size() - kGuidSize);
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    for (std::size_t i = 0; i < guid.size(); ++i) {
        const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
        if (isDash ? guid[i] != '-' : kDigits.find(guid[i]) == std::string_view::npos)
            return false;
    }
    return true;
}

/// Tables with one row a day, one for each column with dates, which nobody asks for by name.
bool IsMadeByDesktop(const std::string& table)
{
    return EndsInGuid(table) &&
           (table.starts_with("LocalDateTable_") || table.starts_with("DateTableTemplate_"));
}

bool HasMember(const json& object, const char* key)
{
    return object.is_object() && object.contains(key);
}

/// Returns the object that has a "model", perhaps within a script; null when there is none.
PlacedJson FindDatabase(const PlacedJson& at)
{
    if (HasMember(*at.value, "model") && (*at.value)["model"].is_object())
        return at;
    for (const char* const key : {"createOrReplace", "create", "alter", "database"}) {
        if (HasMember(*at.value, key))
            return FindDatabase({&(*at.value)[key], ChildPointer(at.pointer, key)});
    }
    if (!HasMember(*at.value, "sequence") || !HasMember((*at.value)["sequence"], "operations"))
        return {};
    const json& operations = (*at.value)["sequence"]["operations"];
    for (std::size_t i = 0; operations.is_array() && i < operations.size(); ++i) {
        PlacedJson found =
            FindDatabase({&operations[i],
                          ChildPointer(ChildPointer(at.pointer, "sequence") + "/operations", i)});
        if (found.value != nullptr)
            return found;
    }
    return {};
}

/// The keys of one end of a relationship, and whether it is to-many where nothing is told.
struct EndKeys
{
    const char* table;
    const char* column;
    const char* cardinality;
    bool isMany;
};

constexpr EndKeys kFrom{"fromTable", "fromColumn", "fromCardinality", true};
constexpr EndKeys kTo{"toTable", "toColumn", "toCardinality", false};

class TabularReader
{
public:
    explicit TabularReader(std::span<SourceDocument> documents) : mDocuments(documents) {}

    DatabaseSchema Read()
    {
        std::vector<std::pair<SourceDocument*, PlacedJson>> models;
        for (SourceDocument& document : mDocuments) {
            if (const auto model = FindModel(document))
                models.emplace_back(&document, *model);
        }
        for (const auto& [document, model] : models)
            ReadTables(*document, model);
        for (const auto& [document, relationship] : mRelationships)
            ReadRelationship(*document, relationship);
        NameSources();
        for (const SourceDocument& document : mDocuments)
            for (const std::string& word : document.unknownObjects)
                mLeftOut.Add("objects of kinds that TMDL is not known to have", word);
        for (std::string& note : mLeftOut.List())
            mSchema.notes.push_back(std::move(note));
        return std::move(mSchema);
    }

private:
    /// SQL can name a table of the database where the columns that joins compare are called so
    /// there.
    void NameSources()
    {
        for (const SchemaJoin& join : mSchema.joins)
            for (const SchemaJoinEnd* const end : {&join.left, &join.right})
                if (const SchemaColumn* const column =
                        FindColumn(mSchema.tables[end->table].columns, end->columns.front()))
                    mOrigins[end->table].UseColumn(column->name);
        for (std::size_t i = 0; i < mOrigins.size(); ++i) {
            SchemaTable& table = mSchema.tables[i];
            table.source = mOrigins[i].GetPath();
            if (table.source.empty())
                mLeftOut.Add("queries of tables, which are called as in the model", table.name);
        }
    }

    [[nodiscard]] std::optional<PlacedJson> FindModel(SourceDocument& document)
    {
        const PlacedJson top = document.Top();
        PlacedJson database =
            document.syntax == ESyntax::Tmdl
                ? PlacedJson{HasMember(document.json, "database") ? &document.json["database"]
                                                                  : nullptr,
                             "/database"}
                : FindDatabase(top);
        if (mSchema.name.empty() && database.value != nullptr)
            mSchema.name = JsonObject(database, document.problems).GetText("name");
        if (document.syntax == ESyntax::Tmdl)
            return top;
        if (database.value != nullptr)
            return JsonObject(database, document.problems).Find("model");
        document.problems.Add("", "holds no model, nor a script that creates one");
        return std::nullopt;
    }

    void ReadTables(SourceDocument& document, const PlacedJson& model)
    {
        JsonObject object(model, document.problems);
        for (const PlacedJson& table : object.GetList("tables"))
            ReadTable(document, table);
        CountAll(object, "roles", "roles and the rows that they may see", document.problems);
        CountAll(object, "perspectives", "perspectives", document.problems);
        for (const PlacedJson& relationship : object.GetList("relationships"))
            mRelationships.emplace_back(&document, relationship);
        object.RejectMisspeltKeys();
    }

    void ReadTable(SourceDocument& document, const PlacedJson& placed)
    {
        JsonObject object(placed, document.problems);
        const std::string name = object.GetText("name", EPresence::Required);
        if (IsMadeByDesktop(name)) {
            mDesktopTables.insert(name);
            mLeftOut.Add("date tables made by the desktop", name);
            return;
        }
        const bool isNew = mIndex.Add(name, mSchema.tables.size());
        if (isNew) {
            mSchema.tables.push_back({.name = name});
            mOrigins.emplace_back();
        } else if (document.syntax != ESyntax::Tmdl) {
            document.problems.Add(ChildPointer(placed.pointer, "name"),
                                  "there is a table of that name already: \"" + name + '"');
        }
        // In TMDL several files may each tell a part of one table.
        const std::size_t position = *mIndex.Find(name);
        SchemaTable& table = mSchema.tables[position];
        if (std::string text = object.GetText("description"); !text.empty())
            table.description = std::move(text);
        for (const PlacedJson& column : object.GetList("columns"))
            ReadColumn(document.problems, column, position);
        for (const PlacedJson& partition : object.GetList("partitions"))
            ReadPartition(document.problems, partition, position);
        if (object.GetBoolean("isHidden").value_or(false))
            mLeftOut.Add("marks of tables as hidden", name);
        CountAll(object, "measures", "measures", document.problems);
        CountAll(object, "hierarchies", "hierarchies", document.problems);
        object.RejectMisspeltKeys();
    }

    void ReadColumn(JsonProblems& problems, const PlacedJson& placed, std::size_t position)
    {
        JsonObject object(placed, problems);
        const std::string type = object.GetText("type");
        // What numbers the rows inside the engine is no column of theirs.
        if (type == "rowNumber")
            return;
        SchemaTable& table = mSchema.tables[position];
        SchemaColumn column{.name = object.GetText("name", EPresence::Required)};
        column.description = object.GetText("description");
        const bool isKey = object.GetBoolean("isKey").value_or(false);
        column.isNotNull = isKey || !object.GetBoolean("isNullable").value_or(true);
        if (isKey)
            table.keys.push_back({column.name});
        const std::string source = object.GetText("sourceColumn");
        const bool isComputed = source.empty() && object.Find("expression").value != nullptr;
        if (isComputed || !(source.empty() || source == column.name))
            mOrigins[position].NameColumn(column.name, source);
        table.columns.push_back(std::move(column));
        object.RejectMisspeltKeys();
    }

    void ReadPartition(JsonProblems& problems, const PlacedJson& placed, std::size_t position)
    {
        JsonObject object(placed, problems);
        const PlacedJson source = object.Find("source");
        // TMDL tells the type behind the name.
        const PlacedJson type = object.Find("expression");
        object.RejectMisspeltKeys();
        if (source.value != nullptr)
            mOrigins[position].AddPartition(
                source, type.value == nullptr ? "" : ReadText(type, problems).value_or(""),
                problems);
    }

    void CountAll(JsonObject& object, const char* key, const char* kind, JsonProblems& problems)
    {
        for (const PlacedJson& counted : object.GetList(key))
            mLeftOut.Add(kind, JsonObject(counted, problems).GetText("name"));
    }

    void ReadRelationship(SourceDocument& document, const PlacedJson& placed)
    {
        JsonObject object(placed, document.problems);
        SchemaJoin join{.name = object.GetText("name")};
        if (EndsInGuid(join.name))
            join.name.clear();
        const auto left = ReadEnd(document, object, kFrom);
        const auto right = ReadEnd(document, object, kTo);
        const bool isActive = object.GetBoolean("isActive").value_or(true);
        const bool isComplete = object.GetBoolean("relyOnReferentialIntegrity").value_or(false);
        const auto filtering = object.GetChoice<bool>(
            "crossFilteringBehavior",
            {{"oneDirection", false}, {"bothDirections", true}, {"automatic", false}});
        const auto isByDay = object.GetChoice<bool>(
            "joinOnDateBehavior", {{"dateAndTime", false}, {"datePartOnly", true}});
        object.RejectMisspeltKeys();
        if (!left || !right)
            return;
        join.left = *left;
        join.right = *right;
        join.isActive = isActive;
        if (isComplete)
            join.right.isOptional = false;
        if (isByDay.value_or(false))
            CompareDays(join);
        if (filtering.value_or(false))
            mLeftOut.Add("filters that go both ways", mSchema.tables[join.left.table].name +
                                                          " <-> " +
                                                          mSchema.tables[join.right.table].name);
        mSchema.joins.push_back(std::move(join));
    }

    [[nodiscard]] std::optional<SchemaJoinEnd> ReadEnd(SourceDocument& document, JsonObject& object,
                                                       const EndKeys& keys)
    {
        SchemaJoinEnd end{.isMany = keys.isMany};
        // What is told to be of no cardinality follows from keys.
        if (const auto stated = object.GetChoice<std::optional<bool>>(
                keys.cardinality, {{"one", false}, {"many", true}, {"none", std::nullopt}}))
            end.isMany = *stated;
        const char* const tableKey = document.syntax == ESyntax::Tmdl ? keys.column : keys.table;
        std::string column = object.GetText(keys.column, EPresence::Required);
        if (column.empty())
            return std::nullopt;
        std::string table = column;
        if (document.syntax != ESyntax::Tmdl) {
            table = object.GetText(tableKey, EPresence::Required);
        } else if (const auto path = ReadTmdlPath(column); path && path->size() == 2) {
            table = path->front();
            column = path->back();
        } else {
            document.problems.Add(ChildPointer(object.GetPointer(), keys.column),
                                  "must be a table and a column with a dot between: " + column);
            return std::nullopt;
        }
        if (table.empty() || mDesktopTables.contains(table))
            return std::nullopt;
        const auto found = mIndex.Find(table);
        if (!found) {
            document.problems.Add(ChildPointer(object.GetPointer(), tableKey),
                                  "there is no table \"" + table + '"', mIndex.Nearest(table));
            return std::nullopt;
        }
        end.table = *found;
        end.columns = {column};
        CheckColumn(document, ChildPointer(object.GetPointer(), keys.column), end);
        return end;
    }

    void CheckColumn(SourceDocument& document, const std::string& pointer,
                     const SchemaJoinEnd& end) const
    {
        const SchemaTable& table = mSchema.tables[end.table];
        const std::string& column = end.columns.front();
        if (FindColumn(table.columns, column) != nullptr)
            return;
        std::vector<std::string_view> known;
        for (const SchemaColumn& other : table.columns)
            known.push_back(other.name);
        document.problems.Add(pointer, '"' + table.name + "\" has no column \"" + column + '"',
                              model::NearestNames(column, known));
    }

    /// Times within one day are the same for such a relationship.
    void CompareDays(SchemaJoin& join) const
    {
        const auto day = [](const char* end, const std::string& column) {
            return "CAST(" + model::ToReferenceText(model::QualifiedName{end, column}) +
                   " AS DATE)";
        };
        join.condition = day("left", join.left.columns.front()) + " = " +
                         day("right", join.right.columns.front());
    }

    std::span<SourceDocument> mDocuments;
    DatabaseSchema mSchema;
    SubjectIndex mIndex;
    LeftOut mLeftOut;
    /// By the positions of the tables.
    std::vector<TableOrigin> mOrigins;
    std::vector<std::pair<SourceDocument*, PlacedJson>> mRelationships;
    std::set<std::string> mDesktopTables;
};

} // namespace

bool IsTabularJson(const SourceDocument& document)
{
    if (document.syntax != ESyntax::Json)
        return false;
    const PlacedJson database = FindDatabase(document.Top());
    if (database.value == nullptr)
        return HasMember(document.json, "compatibilityLevel");
    const json& model = (*database.value)["model"];
    return model.contains("tables") || model.contains("relationships") ||
           HasMember(*database.value, "compatibilityLevel");
}

bool IsTmdl(const SourceDocument& document)
{
    return document.syntax == ESyntax::Tmdl;
}

DatabaseSchema ReadTabularModel(std::span<SourceDocument> documents)
{
    return TabularReader(documents).Read();
}

} // namespace qe::tool
