#include "Toolkit/Import/Formats/DbtSemantic.h"

#include "Toolkit/Import/Formats/ColumnText.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

/// What an entity is to its semantic model. The more of them a join leads to, the later.
enum class EEntity : std::uint8_t
{
    /// Several rows have it.
    Foreign,
    /// Rows have it for some time each.
    Natural,
    Unique,
    Primary,
};

struct Entity
{
    std::size_t table = 0;
    EEntity type = EEntity::Foreign;
    /// A column or an expression.
    std::string text{};
};

/// Joins that lead to "natural" ones would need a moment, which conditions do not have.
bool IsMany(EEntity type)
{
    return type == EEntity::Foreign || type == EEntity::Natural;
}

class SemanticReader
{
public:
    explicit SemanticReader(SourceDocument& document)
        : mProblems(document.problems), mTop(document.Top(), mProblems, ENull::Absent)
    {}

    DatabaseSchema Read()
    {
        for (const PlacedJson& model : ListOf("semantic_models"))
            ReadModel(model);
        for (const auto& [name, entities] : mEntities)
            for (std::size_t i = 0; i < entities.size(); ++i)
                for (std::size_t j = i + 1; j < entities.size(); ++j)
                    Join(name, entities[i], entities[j]);
        for (const PlacedJson& metric : ListOf("metrics"))
            mLeftOut.Add("metrics", JsonObject(metric, mProblems, ENull::Absent).GetText("name"));
        WriteNotes();
        return std::move(mSchema);
    }

private:
    /// Returns what the key holds, in a list or by ids.
    std::vector<PlacedJson> ListOf(const char* key)
    {
        const PlacedJson found = mTop.Find(key);
        if (found.value == nullptr || !found.value->is_object())
            return mTop.GetList(key);
        std::vector<PlacedJson> elements;
        for (auto& [id, element] : mTop.GetMembers(key))
            elements.push_back(std::move(element));
        return elements;
    }

    void ReadModel(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        SchemaTable table{.name = object.GetText("name", EPresence::Required)};
        table.description = object.GetText("description");
        if (const PlacedJson found = object.Find("node_relation"); found.value != nullptr)
            ReadRelation(found, table);
        bool hasTimes = false;
        ColumnList columns(table);
        for (const PlacedJson& dimension : object.GetList("dimensions"))
            hasTimes = ReadDimension(dimension, table, columns) || hasTimes;
        const std::string owned = object.GetText("primary_entity");
        bool hasPrimary = false;
        for (const PlacedJson& entity : object.GetList("entities"))
            hasPrimary = ReadEntity(entity, table, hasTimes) || hasPrimary;
        if (!owned.empty() && !hasPrimary)
            mLeftOut.Add("primary entities without a column", table.name + '.' + owned);
        for (const PlacedJson& measure : object.GetList("measures"))
            mLeftOut.Add("measures", JsonObject(measure, mProblems, ENull::Absent).GetText("name"));
        object.RejectMisspeltKeys();
        mSchema.tables.push_back(std::move(table));
    }

    void ReadRelation(const PlacedJson& json, SchemaTable& table)
    {
        JsonObject relation(json, mProblems, ENull::Absent);
        table.source = SplitSqlName(relation.GetText("relation_name"));
        table.space = relation.GetText("schema_name");
        if (!table.source.empty())
            return;
        for (const std::string& part :
             {relation.GetText("database"), table.space, relation.GetText("alias")})
            if (!part.empty())
                table.source.push_back(part);
    }

    /// Returns whether it says from or until when a row holds.
    bool ReadDimension(const PlacedJson& json, const SchemaTable& table, ColumnList& columns)
    {
        JsonObject dimension(json, mProblems, ENull::Absent);
        const std::string name = dimension.GetText("name", EPresence::Required);
        const std::string text = dimension.GetText("expr");
        const auto column = ReadColumnName(table, text.empty() ? name : text);
        if (column)
            columns.Add(*column, dimension.GetText("description"));
        else
            mLeftOut.Add("dimensions that are computed", table.name + '.' + name);
        const PlacedJson found = dimension.Find("type_params");
        return found.value != nullptr &&
               JsonObject(found, mProblems, ENull::Absent).Find("validity_params").value != nullptr;
    }

    /// Returns whether it is the primary one.
    bool ReadEntity(const PlacedJson& json, SchemaTable& table, bool hasTimes)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        const std::string name = object.GetText("name", EPresence::Required);
        const auto type = object.GetChoice<EEntity>("type", {{"foreign", EEntity::Foreign},
                                                             {"natural", EEntity::Natural},
                                                             {"unique", EEntity::Unique},
                                                             {"primary", EEntity::Primary}});
        const std::string text = object.GetText("expr");
        object.RejectMisspeltKeys();
        if (!type || name.empty())
            return false;
        if (*type == EEntity::Natural && !hasTimes) {
            mLeftOut.Add("natural entities of what has no validity", table.name + '.' + name);
            return false;
        }
        Entity entity{
            .table = mSchema.tables.size(), .type = *type, .text = text.empty() ? name : text};
        if (const auto column = ReadColumnName(table, entity.text)) {
            EnsureColumn(table, *column);
            if (!IsMany(*type))
                AddKey(table, *type == EEntity::Primary ? EKey::Primary : EKey::Unique, {*column});
        }
        mEntities[name].push_back(std::move(entity));
        return *type == EEntity::Primary;
    }

    /// Joins run from the many side to the one side.
    void Join(const std::string& name, Entity from, Entity to)
    {
        if (to.type < from.type)
            std::swap(from, to);
        const bool isAllowed = to.type > EEntity::Natural ||
                               (to.type == EEntity::Natural && from.type == EEntity::Foreign);
        if (!isAllowed || from.table == to.table)
            return;
        if (mSchema.joins.size() == kMaximumJoins)
            throw InputError({{mProblems.ToPlace("/semantic_models"),
                               "come to more than " + std::to_string(kMaximumJoins) +
                                   " joins, with that of the entity " + name}});
        SchemaJoin join{.left = {.table = from.table, .isMany = IsMany(from.type)},
                        .right = {.table = to.table, .isMany = IsMany(to.type)},
                        .description = "by the entity " + name};
        CompareEnds({mSchema.tables[from.table], from.text}, {mSchema.tables[to.table], to.text},
                    join);
        if (from.type == EEntity::Natural || to.type == EEntity::Natural)
            mTimed.push_back(mSchema.tables[from.table].name + " -> " +
                             mSchema.tables[to.table].name);
        mSchema.joins.push_back(std::move(join));
    }

    void WriteNotes()
    {
        constexpr std::size_t kShown = 5;
        mSchema.notes = mLeftOut.List();
        if (!mTimed.empty())
            mSchema.notes.push_back("counted as many where rows hold for some time each, for the "
                                    "condition names no moment: " +
                                    JoinFirstTexts(mTimed, kShown));
    }

    /// Entities that all models have make a join of each two.
    static constexpr std::size_t kMaximumJoins = 100'000;

    JsonProblems& mProblems;
    JsonObject mTop;
    DatabaseSchema mSchema;
    /// By their names.
    std::map<std::string, std::vector<Entity>> mEntities;
    std::vector<std::string> mTimed;
    LeftOut mLeftOut;
};

} // namespace

bool IsDbtSemantic(const SourceDocument& document)
{
    return document.json.is_object() && document.json.contains("semantic_models");
}

bool HasSemanticModels(const SourceDocument& document)
{
    return IsDbtSemantic(document) && document.json["semantic_models"].is_structured() &&
           !document.json["semantic_models"].empty();
}

DatabaseSchema ReadDbtSemantic(std::span<SourceDocument> documents)
{
    return SemanticReader(documents.front()).Read();
}

} // namespace qe::tool
