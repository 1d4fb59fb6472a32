#include "Toolkit/Import/Formats/DbtTests.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/ColumnText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

namespace {

constexpr const char* kPartial = "tests that hold for some rows only";
constexpr const char* kForeign = "tests of what the file does not hold";
constexpr const char* kOther = "tests that state no joins";

} // namespace

/// A test that is on.
struct DbtTests::Test
{
    std::string label{};
    /// With the package that it comes from.
    std::string kind{};
    std::size_t table = 0;
    /// The ids of what it reads.
    Names reads{};
    /// The rows that it holds for; empty for all.
    std::string where{};
    /// Versions differ in where arguments lie.
    std::vector<JsonObject> arguments{};
};

std::optional<DbtTests::Test> DbtTests::Open(const PlacedJson& json)
{
    JsonObject object(json, mProblems, ENull::Absent);
    Test test{.label = object.GetText("name")};
    if (!ReadConfig(object, test)) {
        mLeftOut.Add("tests that are disabled", test.label);
        return std::nullopt;
    }
    ReadArguments(object, test);
    if (test.arguments.empty()) {
        mLeftOut.Add(kOther, test.label);
        return std::nullopt;
    }
    const std::optional<std::size_t> table = FindTable(object, test);
    if (!table) {
        mLeftOut.Add(kForeign, test.label);
        return std::nullopt;
    }
    test.table = *table;
    return test;
}

bool DbtTests::ReadConfig(JsonObject& object, Test& test)
{
    const PlacedJson found = object.Find("config");
    if (found.value == nullptr)
        return true;
    JsonObject config(found, mProblems, ENull::Absent);
    test.where = config.GetText("where");
    return config.GetBoolean("enabled").value_or(true);
}

void DbtTests::ReadArguments(JsonObject& object, Test& test)
{
    const PlacedJson found = object.Find("test_metadata");
    if (found.value == nullptr)
        return;
    JsonObject metadata(found, mProblems, ENull::Absent);
    const std::string space = metadata.GetText("namespace");
    test.kind = (space.empty() ? "" : space + '.') + metadata.GetText("name");
    const PlacedJson given = metadata.Find("kwargs");
    if (given.value == nullptr)
        return;
    JsonObject& arguments = test.arguments.emplace_back(given, mProblems, ENull::Absent);
    const PlacedJson inner = arguments.Find("arguments");
    if (inner.value != nullptr && inner.value->is_object())
        test.arguments.emplace_back(inner, mProblems, ENull::Absent);
}

std::optional<std::size_t> DbtTests::FindTable(JsonObject& object, Test& test)
{
    if (const PlacedJson found = object.Find("depends_on"); found.value != nullptr)
        test.reads =
            JsonObject(found, mProblems, ENull::Absent).GetTexts("nodes").value_or(Names{});
    const auto attached = mIndex.FindId(object.GetText("attached_node"));
    return attached ? attached
                    : mIndex.FindCall(test.arguments.front().GetText("model"), test.reads);
}

void DbtTests::Read(const PlacedJson& json)
{
    std::optional<Test> test = Open(json);
    if (!test)
        return;
    if (test->kind == "relationships")
        ReadRelationship(*test);
    else if (test->kind == "dbt_constraints.foreign_key")
        ReadForeignKey(*test);
    else if (test->kind == "dbt_constraints.primary_key")
        ReadKey(*test, EKey::Primary);
    else if (test->kind == "unique" || test->kind == "dbt_constraints.unique_key" ||
             test->kind == "dbt_utils.unique_combination_of_columns")
        ReadKey(*test, EKey::Unique);
    else if (test->kind == "not_null")
        ReadNotNull(*test);
    else
        mLeftOut.Add(kOther, test->label);
}

/// Returns the text or texts of the first of the keys that there is.
DbtTests::Names DbtTests::GetColumns(Test& test, std::initializer_list<const char*> keys)
{
    for (JsonObject& arguments : test.arguments) {
        for (const char* key : keys) {
            const PlacedJson found = arguments.Find(key);
            if (found.value == nullptr)
                continue;
            if (found.value->is_array())
                return arguments.GetTexts(key).value_or(Names{});
            const std::optional<std::string> text = ReadText(found, mProblems);
            return text ? Names{*text} : Names{};
        }
    }
    return {};
}

void DbtTests::ReadNotNull(Test& test)
{
    if (!test.where.empty())
        return mLeftOut.Add(kPartial, test.label);
    SchemaTable& table = mTables[test.table];
    for (const std::string& text : GetColumns(test, {"column_name"}))
        if (const auto column = ReadColumnName(table, text))
            EnsureColumn(table, *column).isNotNull = true;
}

void DbtTests::ReadKey(Test& test, EKey kind)
{
    if (!test.where.empty())
        return mLeftOut.Add(kPartial, test.label);
    SchemaTable& table = mTables[test.table];
    Names columns;
    const Names texts = GetColumns(test, {"combination_of_columns", "column_names", "column_name"});
    for (const std::string& text : texts) {
        const auto column = ReadColumnName(table, text);
        if (!column) {
            if (texts.size() == 1)
                mFacts.uniqueExpressions.emplace(test.table, text);
            return;
        }
        columns.push_back(*column);
    }
    AddKey(table, kind, columns);
    // A primary key is never null.
    for (const std::string& column : columns)
        if (kind == EKey::Primary)
            EnsureColumn(table, column).isNotNull = true;
}

void DbtTests::ReadRelationship(Test& test)
{
    std::string target;
    for (JsonObject& arguments : test.arguments)
        target = target.empty() ? arguments.GetText("to") : target;
    AddReference(test, target,
                 {.fromColumns = GetColumns(test, {"column_name"}),
                  .toColumns = GetColumns(test, {"field"})});
}

void DbtTests::ReadForeignKey(Test& test)
{
    std::string target;
    for (JsonObject& arguments : test.arguments)
        target = target.empty() ? arguments.GetText("pk_table_name") : target;
    AddReference(test, target,
                 {.fromColumns = GetColumns(
                      test, {"fk_column_names", "fk_column_name", "column_names", "column_name"}),
                  .toColumns = GetColumns(test, {"pk_column_names", "pk_column_name"}),
                  .proof = EDbtProof::Made});
}

void DbtTests::AddReference(const Test& test, const std::string& target, DbtReference reference)
{
    const std::optional<std::size_t> to = mIndex.FindCall(target, test.reads);
    if (!to)
        return mLeftOut.Add(kForeign, test.label);
    reference.from = test.table;
    reference.to = *to;
    reference.where = test.where;
    mFacts.references.push_back(std::move(reference));
}

} // namespace qe::tool
