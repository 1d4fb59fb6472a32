#include "Toolkit/Import/Formats/TblsSchema.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

/// A word for how many rows there are, as people and versions of tbls write it.
struct CardinalityWord
{
    std::string_view word;
    bool isMany;
    bool isOptional;
};

/// In lower case, with blanks for "_".
constexpr std::array<CardinalityWord, 19> kWords{{
    {"zero or one", false, true}, {"exactly one", false, false}, {"zero or more", true, true},
    {"one or more", true, false}, {"one or zero", false, true},  {"zero or many", true, true},
    {"one or many", true, false}, {"many or one", true, false},  {"many or zero", true, true},
    {"0..1", false, true},        {"0..*", true, true},          {"1..*", true, false},
    {"0+", true, true},           {"1+", true, false},           {"1", false, false},
    {"one", false, false},        {"only one", false, false},    {"many(0)", true, true},
    {"many(1)", true, false},
}};

class TblsReader
{
public:
    explicit TblsReader(SourceDocument& document)
        : mProblems(document.problems), mTop(document.Top(), mProblems, ENull::Absent)
    {}

    DatabaseSchema Read()
    {
        mSchema.name = mTop.GetText("name");
        ReadDriver();
        for (const PlacedJson& table : mTop.GetList("tables"))
            ReadTable(table);
        for (const PlacedJson& relation : mTop.GetList("relations"))
            ReadRelation(relation);
        for (const PlacedJson& view : mTop.GetList("viewpoints"))
            mLeftOut.Add("viewpoints", JsonObject(view, mProblems, ENull::Absent).GetText("name"));
        mTop.RejectMisspeltKeys();
        mSchema.notes = mLeftOut.List();
        return std::move(mSchema);
    }

private:
    void ReadDriver()
    {
        const PlacedJson driver = mTop.Find("driver");
        if (driver.value == nullptr)
            return;
        const std::string name = JsonObject(driver, mProblems, ENull::Absent).GetText("name");
        mSchema.origin = "a schema of tbls" + (name.empty() ? "" : ", from " + name);
    }

    void ReadTable(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        SchemaTable table{.name = object.GetText("name", EPresence::Required)};
        // The schema stands before the name, where there are several.
        if (const std::size_t dot = table.name.find('.'); dot != std::string::npos)
            table.source = {table.name.substr(0, dot), table.name.substr(dot + 1)};
        table.description = object.GetText("comment");
        for (const PlacedJson& column : object.GetList("columns"))
            ReadColumn(column, table);
        for (const PlacedJson& constraint : object.GetList("constraints"))
            ReadConstraint(constraint, table);
        mIndex.TakeTable(std::move(table), mSchema, object, mProblems);
    }

    void ReadColumn(const PlacedJson& json, SchemaTable& table)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        const std::string name = object.GetText("name", EPresence::Required);
        table.columns.push_back({.name = name,
                                 .isNotNull = !object.GetBoolean("nullable").value_or(true),
                                 .description = object.GetText("comment")});
        object.RejectMisspeltKeys();
    }

    void ReadConstraint(const PlacedJson& json, SchemaTable& table)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        const std::string type = object.GetText("type");
        const std::optional<std::vector<std::string>> columns = object.GetTexts("columns");
        object.RejectMisspeltKeys();
        if (!columns || columns->empty())
            return;
        if (type == "PRIMARY KEY")
            AddKey(table, EKey::Primary, *columns);
        else if (type == "UNIQUE")
            AddKey(table, EKey::Unique, *columns);
    }

    void ReadRelation(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        const auto child = mIndex.Find(object, "table", mProblems);
        const auto parent = mIndex.Find(object, "parent_table", mProblems);
        SchemaJoinEnd left{.columns =
                               object.GetTexts("columns").value_or(std::vector<std::string>{})};
        SchemaJoinEnd right{
            .columns = object.GetTexts("parent_columns").value_or(std::vector<std::string>{})};
        ReadCardinality(object, "cardinality", left);
        ReadCardinality(object, "parent_cardinality", right);
        object.RejectMisspeltKeys();
        if (!child || !parent)
            return;
        left.table = *child;
        right.table = *parent;
        mSchema.joins.push_back(
            {.left = std::move(left), .right = std::move(right), .pointer = json.pointer});
    }

    void ReadCardinality(JsonObject& object, const char* key, SchemaJoinEnd& end)
    {
        const std::string stated = object.GetText(key);
        if (stated.empty())
            return;
        std::string word = ascii::ToLower(stated);
        std::replace(word.begin(), word.end(), '_', ' ');
        for (const CardinalityWord& known : kWords) {
            if (known.word == word) {
                end.isMany = known.isMany;
                end.isOptional = known.isOptional;
                return;
            }
        }
        mProblems.Add(ChildPointer(object.GetPointer(), key),
                      "is no cardinality: \"" + stated + '"',
                      model::NearestNames(
                          stated, {"zero_or_one", "exactly_one", "zero_or_more", "one_or_more"}));
    }

    JsonProblems& mProblems;
    JsonObject mTop;
    DatabaseSchema mSchema;
    SubjectIndex mIndex;
    LeftOut mLeftOut;
};

} // namespace

bool IsTblsSchema(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    return json.is_object() && json.contains("tables") &&
           (json.contains("relations") || json.contains("driver"));
}

DatabaseSchema ReadTblsSchema(std::span<SourceDocument> documents)
{
    return TblsReader(documents.front()).Read();
}

} // namespace qe::tool
