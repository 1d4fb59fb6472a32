#include "Toolkit/Import/Formats/OssieModel.h"

#include "Toolkit/Import/Formats/ColumnText.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/SubjectIndex.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// How many names a note shows.
constexpr std::size_t kShownNames = 5;

class OssieReader
{
public:
    explicit OssieReader(SourceDocument& document)
        : mProblems(document.problems),
          mDocument(document.Top()),
          mTop(mDocument, mProblems, ENull::Absent)
    {}

    DatabaseSchema Read()
    {
        if (mTop.Find("ontology").value != nullptr) {
            mProblems.Add("/ontology", "is an ontology: concepts without datasets, not a semantic "
                                       "model, of which the joins could be read");
            return {};
        }
        if (mTop.Find("datasets").value != nullptr)
            ReadModel(mDocument, true);
        else
            ReadModels();
        WriteNotes();
        return std::move(mSchema);
    }

private:
    /// Reads the list that held the models before a document was one of them.
    void ReadModels()
    {
        const PlacedJson models = mTop.Find("semantic_model", EPresence::Required);
        if (models.value == nullptr)
            return;
        const std::vector<PlacedJson> list = ReadList(models, mProblems);
        for (const PlacedJson& model : list)
            ReadModel(model, list.size() == 1);
        mTop.RejectMisspeltKeys();
    }

    /// Names hold within one of the models.
    void ReadModel(const PlacedJson& json, bool isOnly)
    {
        JsonObject model(json, mProblems, ENull::Absent);
        const std::string name = model.GetText("name", EPresence::Required);
        if (isOnly)
            mSchema.name = name;
        mIndex = {};
        for (const PlacedJson& dataset : model.GetList("datasets"))
            ReadDataset(dataset, isOnly ? "" : name);
        for (const PlacedJson& relationship : model.GetList("relationships"))
            ReadRelationship(relationship);
        for (const PlacedJson& metric : model.GetList("metrics"))
            mLeftOut.Add("metrics", JsonObject(metric, mProblems, ENull::Absent).GetText("name"));
        model.RejectMisspeltKeys();
    }

    void ReadDataset(const PlacedJson& json, const std::string& space)
    {
        JsonObject dataset(json, mProblems, ENull::Absent);
        SchemaTable table{.name = dataset.GetText("name", EPresence::Required)};
        table.description = dataset.GetText("description");
        table.space = space;
        const std::string source = dataset.GetText("source");
        table.source = SplitSqlName(source);
        if (table.source.empty() && !source.empty())
            mLeftOut.Add("queries that datasets stand for", table.name);
        ColumnList columns(table);
        for (const PlacedJson& field : dataset.GetList("fields"))
            ReadField(field, table, columns);
        AddKey(table, EKey::Primary, dataset.GetTexts("primary_key").value_or(Names{}));
        for (const PlacedJson& key : dataset.GetList("unique_keys"))
            ReadKey(key, table);
        mIndex.TakeTable(std::move(table), mSchema, dataset, mProblems);
    }

    void ReadKey(const PlacedJson& json, SchemaTable& table)
    {
        Names columns;
        for (const PlacedJson& column : ReadList(json, mProblems))
            if (auto name = ReadText(column, mProblems))
                columns.push_back(std::move(*name));
        AddKey(table, EKey::Unique, std::move(columns));
    }

    /// A field that is a column goes by the column's name, as joins and SQL do.
    void ReadField(const PlacedJson& json, const SchemaTable& table, ColumnList& columns)
    {
        JsonObject field(json, mProblems, ENull::Absent);
        const std::string name = field.GetText("name", EPresence::Required);
        const std::string text = ReadExpression(field);
        const std::string description = field.GetText("description");
        field.RejectMisspeltKeys();
        const auto column = ReadColumnName(table, text.empty() ? name : text);
        if (!column) {
            mLeftOut.Add("fields that are computed", table.name + '.' + name);
            mFields[{mSchema.tables.size(), name}] = text;
            return;
        }
        if (*column != name)
            mFields[{mSchema.tables.size(), name}] = *column;
        columns.Add(*column, description);
    }

    /// Returns the expression in SQL of no one's dialect, else the first.
    std::string ReadExpression(JsonObject& field)
    {
        const PlacedJson found = field.Find("expression");
        if (found.value == nullptr)
            return {};
        if (const std::string* const text = FindText(*found.value))
            return *text;
        JsonObject expression(found, mProblems, ENull::Absent);
        std::string chosen;
        for (const PlacedJson& json : expression.GetList("dialects")) {
            JsonObject dialect(json, mProblems, ENull::Absent);
            std::string text = dialect.GetText("expression");
            if (dialect.GetText("dialect") == "ANSI_SQL")
                return text;
            chosen = chosen.empty() ? std::move(text) : chosen;
        }
        return chosen;
    }

    void ReadRelationship(const PlacedJson& json)
    {
        JsonObject object(json, mProblems, ENull::Absent);
        SchemaJoin join{.name = object.GetText("name")};
        const auto from = mIndex.Find(object, "from", mProblems);
        const auto to = mIndex.Find(object, "to", mProblems);
        Names fromColumns = ReadColumns(object, "from_columns");
        Names toColumns = ReadColumns(object, "to_columns");
        object.RejectMisspeltKeys();
        if (!from || !to || fromColumns.empty() || toColumns.empty())
            return;
        if (fromColumns.size() != toColumns.size())
            return mProblems.Add(json.pointer, "pairs " + std::to_string(fromColumns.size()) +
                                                   " columns with " +
                                                   std::to_string(toColumns.size()));
        join.left.table = *from;
        join.right.table = *to;
        for (std::size_t i = 0; i < fromColumns.size(); ++i)
            Compare(fromColumns[i], toColumns[i], join);
        SetCardinality(join);
        mSchema.joins.push_back(std::move(join));
    }

    Names ReadColumns(JsonObject& object, const char* key)
    {
        if (object.Find(key, EPresence::Required).value == nullptr)
            return {};
        Names columns = object.GetTexts(key).value_or(Names{});
        const std::string pointer = ChildPointer(object.GetPointer(), key);
        if (columns.empty() && !mProblems.IsReported(pointer))
            mProblems.Add(pointer, "names no columns");
        return columns;
    }

    /// The names may be those of fields, of which some are computed.
    void Compare(const std::string& from, const std::string& to, SchemaJoin& join)
    {
        CompareEnds({mSchema.tables[join.left.table], Resolve(join.left.table, from)},
                    {mSchema.tables[join.right.table], Resolve(join.right.table, to)}, join);
    }

    [[nodiscard]] std::string Resolve(std::size_t table, const std::string& name) const
    {
        if (FindColumn(mSchema.tables[table].columns, name) != nullptr)
            return name;
        const auto field = mFields.find({table, name});
        // Quotes keep a name with blanks from being taken for an expression.
        return field == mFields.end() ? '"' + name + '"' : field->second;
    }

    /// One row of "to" is meant; where no key says so, any number may be.
    void SetCardinality(SchemaJoin& join)
    {
        const SchemaTable& to = mSchema.tables[join.right.table];
        if (join.condition.empty() && IsUnique(to, join.right.columns))
            return;
        join.left.isMany = true;
        join.right.isMany = true;
        mDoubtful.push_back(join.name.empty() ? to.name : join.name);
    }

    void WriteNotes()
    {
        mSchema.notes = mLeftOut.List();
        if (!mDoubtful.empty())
            mSchema.notes.push_back("counted as many at both ends, for the columns referred to are "
                                    "no declared key of their dataset: " +
                                    JoinFirstTexts(mDoubtful, kShownNames));
    }

    JsonProblems& mProblems;
    PlacedJson mDocument;
    JsonObject mTop;
    DatabaseSchema mSchema;
    SubjectIndex mIndex;
    /// What fields are that are not called like a column, by dataset and name.
    std::map<std::pair<std::size_t, std::string>, std::string> mFields;
    Names mDoubtful;
    LeftOut mLeftOut;
};

} // namespace

bool IsOssieModel(const SourceDocument& document)
{
    const nlohmann::json& json = document.json;
    return json.is_object() && (json.contains("semantic_model") ||
                                (json.contains("datasets") && json.contains("name")) ||
                                (json.contains("ontology") && json.contains("version")));
}

DatabaseSchema ReadOssieModel(std::span<SourceDocument> documents)
{
    return OssieReader(documents.front()).Read();
}

} // namespace qe::tool
