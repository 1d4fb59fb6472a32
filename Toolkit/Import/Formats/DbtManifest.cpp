#include "Toolkit/Import/Formats/DbtManifest.h"

#include "Toolkit/Import/Formats/ColumnText.h"
#include "Toolkit/Import/Formats/DbtIndex.h"
#include "Toolkit/Import/Formats/DbtSemantic.h"
#include "Toolkit/Import/Formats/DbtTests.h"
#include "Toolkit/Import/Formats/DbtVersion.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// How many names a note shows.
constexpr std::size_t kShownNames = 5;

bool IsTable(const std::string& resourceType)
{
    return resourceType == "model" || resourceType == "seed" || resourceType == "snapshot";
}

std::string DescribeProof(const DbtReference& reference)
{
    const std::string where = reference.where.empty() ? "" : ", for rows where " + reference.where;
    switch (reference.proof) {
    case EDbtProof::Tested:
        return "tested, enforced by no constraint" + where;
    case EDbtProof::Stated:
        return "a constraint that no contract of the model enforces";
    default:
        return "a constraint of the database" + where;
    }
}

class ManifestReader
{
public:
    explicit ManifestReader(SourceDocument& document)
        : mProblems(document.problems),
          mTop(document.Top(), mProblems, ENull::Absent),
          mTests(mIndex, mSchema.tables, mProblems)
    {}

    DatabaseSchema Read()
    {
        if (!ReadMetadata() || mTop.Find("nodes", EPresence::Required).value == nullptr)
            return {};
        std::vector<PlacedJson> tests;
        const auto nodes = mTop.GetMembers("nodes");
        for (const auto& [id, node] : nodes) {
            const std::string type = JsonObject(node, mProblems, ENull::Absent)
                                         .GetText("resource_type", EPresence::Required);
            if (IsTable(type))
                ReadTable(id, node);
            else if (type == "test")
                tests.push_back(node);
        }
        for (const auto& [id, source] : mTop.GetMembers("sources"))
            ReadTable(id, source);
        for (const auto& [id, node] : nodes)
            if (const auto position = mIndex.FindId(id))
                ReadConstraints(node, *position);
        for (const PlacedJson& test : tests)
            mTests.Read(test);
        for (const DbtReference& reference : mTests.GetFacts().references)
            AddJoin(reference);
        DropSources();
        WriteNotes();
        return std::move(mSchema);
    }

private:
    /// Returns whether the rest can be read.
    [[nodiscard]] bool ReadMetadata();
    void ReadTable(const std::string& id, const PlacedJson& json);
    void ReadRelation(JsonObject& object, SchemaTable& table);
    [[nodiscard]] std::string ReadVersion(JsonObject& object, const char* key);
    void ReadColumns(JsonObject& object, SchemaTable& table);
    void ReadConstraints(const PlacedJson& json, std::size_t position);
    void ReadConstraint(const PlacedJson& json, DbtReference reference);
    void ReadForeignKey(JsonObject& object, DbtReference reference);
    void AddJoin(const DbtReference& reference);
    void DropSources();
    void DescribeJoins();
    void CountProofs();
    void WriteNotes();

    JsonProblems& mProblems;
    JsonObject mTop;
    DatabaseSchema mSchema;
    DbtIndex mIndex;
    DbtTests mTests;
    /// The references that joins were made of, at the joins' positions.
    std::vector<DbtReference> mProofs;
    std::map<std::tuple<std::size_t, std::size_t, std::set<std::pair<std::string, std::string>>,
                        std::string>,
             std::size_t>
        mPositions;
};

bool ManifestReader::ReadMetadata()
{
    const PlacedJson found = mTop.Find("metadata");
    if (found.value == nullptr)
        return true;
    JsonObject metadata(found, mProblems, ENull::Absent);
    std::optional<std::string> note = CheckDbtVersion(metadata, mProblems);
    if (!note)
        return false;
    if (!note->empty())
        mSchema.notes.push_back(std::move(*note));
    mSchema.name = metadata.GetText("project_name");
    const std::string version = metadata.GetText("dbt_version");
    mSchema.origin = "a manifest of dbt" + (version.empty() ? "" : ' ' + version);
    return true;
}

/// Versions of models are numbers or texts.
std::string ManifestReader::ReadVersion(JsonObject& object, const char* key)
{
    const PlacedJson found = object.Find(key);
    if (found.value == nullptr)
        return {};
    return found.value->is_number() ? found.value->dump() : ReadText(found, mProblems).value_or("");
}

void ManifestReader::ReadRelation(JsonObject& object, SchemaTable& table)
{
    table.source = SplitSqlName(object.GetText("relation_name"));
    table.space = object.GetText("schema");
    if (!table.source.empty())
        return;
    const std::string alias = object.GetText("alias");
    const std::string identifier = object.GetText("identifier");
    for (const std::string& part :
         {object.GetText("database"), table.space, alias.empty() ? identifier : alias})
        if (!part.empty())
            table.source.push_back(part);
}

/// Of several versions of a model, the latest has its name, the others that of their table.

void ManifestReader::ReadTable(const std::string& id, const PlacedJson& json)
{
    JsonObject object(json, mProblems, ENull::Absent);
    SchemaTable table{.name = object.GetText("name", EPresence::Required)};
    table.description = object.GetText("description");
    ReadRelation(object, table);
    ReadColumns(object, table);
    DbtNode node{.id = id,
                 .name = table.name,
                 .package = object.GetText("package_name"),
                 .version = ReadVersion(object, "version"),
                 .sourceName = object.GetText("source_name"),
                 .relation = table.source};
    node.isLatest = node.version == ReadVersion(object, "latest_version");
    if (!node.isLatest && !node.version.empty()) {
        const std::string alias = object.GetText("alias");
        table.name = !alias.empty() && alias != node.name ? alias : node.name + "_v" + node.version;
    }
    mIndex.Add(node);
    mSchema.tables.push_back(std::move(table));
}

void ManifestReader::ReadColumns(JsonObject& object, SchemaTable& table)
{
    for (const auto& [key, json] : object.GetMembers("columns")) {
        JsonObject column(json, mProblems, ENull::Absent);
        const std::string name = column.GetText("name");
        table.columns.push_back(
            {.name = name.empty() ? key : name, .description = column.GetText("description")});
    }
}

void ManifestReader::ReadConstraints(const PlacedJson& json, std::size_t position)
{
    JsonObject object(json, mProblems, ENull::Absent);
    DbtReference reference{.from = position, .proof = EDbtProof::Stated};
    if (const PlacedJson contract = object.Find("contract"); contract.value != nullptr)
        if (JsonObject(contract, mProblems, ENull::Absent).GetBoolean("enforced").value_or(false))
            reference.proof = EDbtProof::Made;
    for (const PlacedJson& constraint : object.GetList("constraints"))
        ReadConstraint(constraint, reference);
    for (const auto& [key, column] : object.GetMembers("columns")) {
        JsonObject columnObject(column, mProblems, ENull::Absent);
        const std::string name = columnObject.GetText("name");
        reference.fromColumns = {name.empty() ? key : name};
        for (const PlacedJson& constraint : columnObject.GetList("constraints"))
            ReadConstraint(constraint, reference);
        columnObject.RejectMisspeltKeys();
    }
    object.RejectMisspeltKeys();
}

void ManifestReader::ReadConstraint(const PlacedJson& json, DbtReference reference)
{
    JsonObject object(json, mProblems, ENull::Absent);
    const std::string type = object.GetText("type");
    if (const auto columns = object.GetTexts("columns"); columns && !columns->empty())
        reference.fromColumns = *columns;
    SchemaTable& table = mSchema.tables[reference.from];
    if (type == "primary_key")
        AddKey(table, EKey::Primary, reference.fromColumns);
    else if (type == "unique")
        AddKey(table, EKey::Unique, reference.fromColumns);
    if (type == "primary_key" || type == "not_null")
        for (const std::string& column : reference.fromColumns)
            EnsureColumn(table, column).isNotNull = true;
    if (type == "foreign_key")
        ReadForeignKey(object, std::move(reference));
}

/// What is referred to stands in "to", or with its columns in "expression": "schema.table (id)".
void ManifestReader::ReadForeignKey(JsonObject& object, DbtReference reference)
{
    std::string target = object.GetText("to");
    reference.toColumns = object.GetTexts("to_columns").value_or(Names{});
    const std::string expression = object.GetText("expression");
    object.RejectMisspeltKeys();
    if (target.empty()) {
        const std::size_t open = expression.rfind('(');
        target = expression.substr(0, open);
        std::string columns = open == std::string::npos ? "" : expression.substr(open + 1);
        columns = columns.substr(0, columns.find(')'));
        std::replace(columns.begin(), columns.end(), ',', '.');
        reference.toColumns = SplitSqlName(columns);
    }
    std::optional<std::size_t> to = mIndex.FindCall(target, {});
    if (!to)
        to = mIndex.FindRelation(SplitSqlName(target));
    if (!to)
        return mTests.GetLeftOut().Add("foreign keys to what the file does not hold",
                                       mSchema.tables[reference.from].name + " -> " + target);
    reference.to = *to;
    mTests.GetFacts().references.push_back(std::move(reference));
}

/// The same reference may be stated several times: what proves it best counts.
void ManifestReader::AddJoin(const DbtReference& reference)
{
    SchemaTable& from = mSchema.tables[reference.from];
    SchemaTable& to = mSchema.tables[reference.to];
    Names toColumns = reference.toColumns;
    if (toColumns.empty() && !to.keys.empty())
        toColumns = to.keys.front();
    SchemaJoin join{.left = {.table = reference.from}, .right = {.table = reference.to}};
    if (reference.fromColumns.size() == toColumns.size())
        for (std::size_t i = 0; i < toColumns.size(); ++i)
            CompareEnds({from, reference.fromColumns[i]}, {to, toColumns[i]}, join);
    std::set<std::pair<std::string, std::string>> pairs;
    for (std::size_t i = 0; i < join.left.columns.size(); ++i)
        pairs.emplace(join.left.columns[i], join.right.columns[i]);
    const auto [position, isNew] = mPositions.try_emplace(
        {join.left.table, join.right.table, pairs, join.condition}, mSchema.joins.size());
    if (!isNew) {
        DbtReference& known = mProofs[position->second];
        known.proof = std::max(known.proof, reference.proof);
        known.where = known.where.empty() || reference.where.empty() ? "" : known.where;
        return;
    }
    join.right.isMany = false;
    if (!join.condition.empty())
        join.left.isMany = mTests.GetFacts().uniqueExpressions.count(
                               {reference.from, reference.fromColumns.front()}) == 0;
    mSchema.joins.push_back(std::move(join));
    mProofs.push_back(reference);
    mProofs.back().toColumns = std::move(toColumns);
}

/// A source that no join names is left out where a node makes its table, such as a seed.
void ManifestReader::DropSources()
{
    std::set<std::size_t> used;
    for (const SchemaJoin& join : mSchema.joins)
        used.insert({join.left.table, join.right.table});
    std::vector<SchemaTable> kept;
    std::vector<std::size_t> moved(mSchema.tables.size());
    for (std::size_t i = 0; i < mSchema.tables.size(); ++i) {
        const DbtNode& node = mIndex.Get(i);
        moved[i] = kept.size();
        const bool isSource = !node.sourceName.empty();
        if (isSource && used.count(i) == 0 && mIndex.FindRelation(node.relation) != i)
            mTests.GetLeftOut().Add("sources in no join, whose tables other nodes make",
                                    node.sourceName + '.' + node.name);
        else
            kept.push_back(std::move(mSchema.tables[i]));
    }
    mSchema.tables = std::move(kept);
    for (SchemaJoin& join : mSchema.joins) {
        join.left.table = moved[join.left.table];
        join.right.table = moved[join.right.table];
    }
}

void ManifestReader::DescribeJoins()
{
    Names doubtful;
    for (std::size_t i = 0; i < mSchema.joins.size(); ++i) {
        SchemaJoin& join = mSchema.joins[i];
        const DbtReference& proof = mProofs[i];
        join.description = DescribeProof(proof);
        if (!proof.where.empty())
            join.right.isOptional = true;
        const SchemaTable& to = mSchema.tables[join.right.table];
        const bool isUnique = join.condition.empty()
                                  ? IsUnique(to, join.right.columns)
                                  : mTests.GetFacts().uniqueExpressions.count(
                                        {proof.to, proof.toColumns.front()}) != 0;
        if (!isUnique)
            doubtful.push_back(mSchema.tables[join.left.table].name + " -> " + to.name + " (" +
                               JoinTexts(proof.toColumns) + ')');
    }
    if (!doubtful.empty())
        mSchema.notes.push_back("counted as one at the end referred to, though nothing says that "
                                "its columns are unique: " +
                                JoinFirstTexts(doubtful, kShownNames));
}

void ManifestReader::CountProofs()
{
    std::map<EDbtProof, std::size_t> counts;
    for (const DbtReference& proof : mProofs)
        ++counts[proof.proof];
    const auto count = [&counts](EDbtProof proof, const char* what) {
        return counts[proof] == 0 ? "" : ", " + std::to_string(counts[proof]) + ' ' + what;
    };
    if (!mProofs.empty())
        mSchema.notes.push_back("joins that their descriptions tell apart: " +
                                (count(EDbtProof::Tested, "only tested") +
                                 count(EDbtProof::Made, "constraints of the database") +
                                 count(EDbtProof::Stated, "constraints that no contract enforces"))
                                    .substr(2));
}

void ManifestReader::WriteNotes()
{
    CountProofs();
    DescribeJoins();
    for (const char* kind : {"exposures", "metrics", "saved_queries", "semantic_models"})
        for (const auto& [id, object] : mTop.GetMembers(kind))
            mTests.GetLeftOut().Add(kind, id);
    mTop.RejectMisspeltKeys();
    for (std::string& note : mTests.GetLeftOut().List())
        mSchema.notes.push_back(std::move(note));
}

} // namespace

bool IsDbtManifest(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    if (!json.is_object() || !json.contains("metadata"))
        return false;
    const nlohmann::json& metadata = json["metadata"];
    // Other files that dbt writes are told apart by their reader.
    return json.contains("nodes") ||
           (metadata.is_object() && metadata.contains("dbt_schema_version"));
}

DatabaseSchema ReadDbtManifest(std::span<SourceDocument> documents)
{
    DatabaseSchema schema = ManifestReader(documents.front()).Read();
    if (!schema.joins.empty() || !documents.front().problems.IsEmpty() ||
        !HasSemanticModels(documents.front()))
        return schema;
    DatabaseSchema semantic = ReadDbtSemantic(documents);
    semantic.notes.emplace_back(
        "no test or constraint states a join: the semantic models of the file are read");
    return semantic;
}

} // namespace qe::tool
