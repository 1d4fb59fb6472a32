#include "Toolkit/Import/PostgreSql/PostgresTree.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

using Node = nlohmann::json;

/// Returns the part of a node; null when there is none.
const Node& PartOf(const Node& node, const char* key)
{
    static const Node kNone;
    const auto found = node.is_object() ? node.find(key) : node.end();
    return node.is_object() && found != node.end() ? *found : kNone;
}

std::string TextOf(const Node& node, const char* key)
{
    const Node& part = PartOf(node, key);
    return part.is_string() ? part.get<std::string>() : std::string();
}

bool Says(const Node& node, const char* key, std::string_view text)
{
    return TextOf(node, key) == text;
}

/// Returns the texts of a list of names.
std::vector<std::string> NamesOf(const Node& list)
{
    std::vector<std::string> names;
    for (const Node& name : list)
        names.push_back(TextOf(PartOf(name, "String"), "sval"));
    return names;
}

ObjectName RelationOf(const Node& relation)
{
    return {.schema = TextOf(relation, "schemaname"), .name = TextOf(relation, "relname")};
}

/// Returns the object that names with dots between them mean.
ObjectName ToObjectName(const std::vector<std::string>& names)
{
    ObjectName object;
    if (!names.empty())
        object.name = names.back();
    if (names.size() > 1)
        object.schema = names[names.size() - 2];
    return object;
}

std::string TextOfConstant(const Node& node)
{
    return TextOf(PartOf(PartOf(node, "A_Const"), "sval"), "sval");
}

/// Returns what stands between the commas of the text, without blanks and quotes.
std::vector<std::string> SplitPath(std::string_view text)
{
    std::vector<std::string> schemas;
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        std::string schema(text.substr(0, comma));
        std::erase_if(schema, [](char c) { return c == ' ' || c == '"'; });
        schemas.push_back(std::move(schema));
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return schemas;
}

} // namespace

bool PostgresTree::Read(const nlohmann::json& statement)
{
    struct Reader
    {
        const char* kind;
        void (PostgresTree::*read)(const Node& node);
    };
    static constexpr std::array kReaders{
        Reader{"CreateStmt", &PostgresTree::ReadTable},
        Reader{"CreateForeignTableStmt", &PostgresTree::ReadTable},
        Reader{"CreateTableAsStmt", &PostgresTree::ReadQueryTable},
        Reader{"CreateSchemaStmt", &PostgresTree::ReadSchema},
        Reader{"AlterTableStmt", &PostgresTree::ReadAlteration},
        Reader{"IndexStmt", &PostgresTree::ReadIndex},
        Reader{"CommentStmt", &PostgresTree::ReadComment},
        Reader{"DropStmt", &PostgresTree::ReadDrop},
        Reader{"RenameStmt", &PostgresTree::ReadRename},
        Reader{"AlterObjectSchemaStmt", &PostgresTree::ReadMove},
        Reader{"VariableSetStmt", &PostgresTree::ReadSetting},
        Reader{"SelectStmt", &PostgresTree::ReadQuery},
    };
    if (!statement.is_object() || statement.empty())
        return false;
    const std::string& kind = statement.begin().key();
    const auto found = std::find_if(kReaders.begin(), kReaders.end(),
                                    [&kind](const Reader& reader) { return reader.kind == kind; });
    if (found == kReaders.end())
        return false;
    (this->*found->read)(statement.begin().value());
    return true;
}

void PostgresTree::ReadTable(const Node& node)
{
    const Node& base = node.contains("base") ? node["base"] : node;
    const Node& relation = PartOf(base, "relation");
    TableDeclaration table{.name = MarkQuoted(RelationOf(relation))};
    const bool isTemporary = Says(relation, "relpersistence", "t");
    if (isTemporary || (base.contains("if_not_exists") && mCatalogue->HasTable(table.name)))
        return mNotes->CountSkipped();
    const bool isPartition = base.contains("partbound");
    for (const Node& parent : PartOf(base, "inhRelations"))
        table.inheritances.push_back(
            {.table = RelationOf(PartOf(parent, "RangeVar")),
             .kind = isPartition ? Inheritance::EKind::Partition : Inheritance::EKind::Child});
    for (const Node& element : PartOf(base, "tableElts"))
        AddElement(element, table);
    mCatalogue->AddTable(std::move(table), mPlace);
}

void PostgresTree::ReadQueryTable(const Node& node)
{
    if (!Says(node, "objtype", "OBJECT_TABLE"))
        return mNotes->CountSkipped();
    const Node& relation = PartOf(PartOf(node, "into"), "rel");
    if (Says(relation, "relpersistence", "t"))
        return mNotes->CountSkipped();
    TableDeclaration table{.name = MarkQuoted(RelationOf(relation))};
    mNotes->Tell(mPlace,
                 "the columns of a table that a query makes are not known: " + table.name.name);
    mCatalogue->AddTable(std::move(table), mPlace);
}

void PostgresTree::ReadSchema(const Node& node)
{
    const SearchPath before = mCatalogue->GetSearchPath();
    std::vector<std::string> path = *before;
    path.insert(path.begin(), TextOf(node, "schemaname"));
    mCatalogue->SetSearchPath(std::move(path));
    for (const Node& element : PartOf(node, "schemaElts"))
        Read(element);
    mCatalogue->SetSearchPath(*before);
}

void PostgresTree::AddElement(const Node& element, TableDeclaration& table) const
{
    if (const Node& column = PartOf(element, "ColumnDef"); !column.is_null())
        AddColumn(column, table);
    else if (const Node& constraint = PartOf(element, "Constraint"); !constraint.is_null())
        AddConstraint(constraint, {}, table);
    else if (const Node& like = PartOf(element, "TableLikeClause"); !like.is_null()) {
        constexpr unsigned kIncludingIndexes = 64;
        const Node& options = PartOf(like, "options");
        const bool hasKeys =
            options.is_number_unsigned() && (options.get<unsigned>() & kIncludingIndexes) != 0;
        table.inheritances.push_back(
            {.table = RelationOf(PartOf(like, "relation")),
             .kind = hasKeys ? Inheritance::EKind::ColumnsAndKeys : Inheritance::EKind::Columns});
    }
}

void PostgresTree::AddColumn(const Node& column, TableDeclaration& table) const
{
    constexpr std::array<std::string_view, 6> kSerials{"serial",  "serial2",   "serial4",
                                                       "serial8", "bigserial", "smallserial"};
    const std::string type =
        ToObjectName(NamesOf(PartOf(PartOf(column, "typeName"), "names"))).name;
    SchemaColumn added{.name = TextOf(column, "colname")};
    added.isQuoted = mQuoted.find(added.name) != mQuoted.end();
    added.isNotNull = std::find(kSerials.begin(), kSerials.end(), type) != kSerials.end();
    for (const Node& part : PartOf(column, "constraints")) {
        const Node& constraint = PartOf(part, "Constraint");
        if (Says(constraint, "contype", "CONSTR_NOTNULL") ||
            Says(constraint, "contype", "CONSTR_IDENTITY"))
            added.isNotNull = true;
        AddConstraint(constraint, added.name, table);
    }
    table.columns.push_back(std::move(added));
}

void PostgresTree::AddConstraint(const Node& constraint, const std::string& column,
                                 TableDeclaration& table)
{
    const std::string name = TextOf(constraint, "conname");
    if (Says(constraint, "contype", "CONSTR_FOREIGN")) {
        std::vector<std::string> columns = NamesOf(PartOf(constraint, "fk_attrs"));
        if (columns.empty())
            columns = {column};
        table.foreignKeys.push_back({.name = name,
                                     .columns = std::move(columns),
                                     .table = RelationOf(PartOf(constraint, "pktable")),
                                     .referenced = NamesOf(PartOf(constraint, "pk_attrs"))});
        return;
    }
    const bool isPrimary = Says(constraint, "contype", "CONSTR_PRIMARY");
    // A constraint that an index holds has its columns from there.
    if ((!isPrimary && !Says(constraint, "contype", "CONSTR_UNIQUE")) ||
        constraint.contains("indexname"))
        return;
    std::vector<std::string> columns = NamesOf(PartOf(constraint, "keys"));
    if (columns.empty())
        columns = {column};
    table.keys.push_back({.name = name,
                          .kind = isPrimary ? EKeyKind::Primary : EKeyKind::Unique,
                          .columns = std::move(columns)});
}

void PostgresTree::ReadAlteration(const Node& node)
{
    const ObjectName table = RelationOf(PartOf(node, "relation"));
    for (const Node& part : PartOf(node, "cmds"))
        ReadCommand(table, PartOf(part, "AlterTableCmd"));
}

void PostgresTree::ReadCommand(const ObjectName& table, const Node& command)
{
    const std::string verb = TextOf(command, "subtype");
    const std::string name = TextOf(command, "name");
    const auto alter = [&](const Alteration& change) { mCatalogue->Alter(table, change, mPlace); };
    if (verb == "AT_AddColumn" || verb == "AT_AddConstraint") {
        TableDeclaration added;
        AddElement(PartOf(command, "def"), added);
        for (const SchemaColumn& column : added.columns)
            alter(column);
        for (const KeyDeclaration& key : added.keys)
            alter(key);
        for (const ForeignKeyDeclaration& key : added.foreignKeys)
            alter(key);
    } else if (verb == "AT_DropColumn") {
        alter(DroppedColumn{.name = name});
    } else if (verb == "AT_DropConstraint") {
        alter(DroppedKey{.name = name});
    } else if (verb == "AT_SetNotNull" || verb == "AT_DropNotNull") {
        alter(ChangedColumn{.name = name, .isNotNull = verb == "AT_SetNotNull"});
    } else if (verb == "AT_AddInherit") {
        alter(Inheritance{.table = RelationOf(PartOf(PartOf(command, "def"), "RangeVar"))});
    } else if (verb == "AT_AttachPartition") {
        const Node& partition = PartOf(PartOf(command, "def"), "PartitionCmd");
        mCatalogue->Alter(RelationOf(PartOf(partition, "name")),
                          Inheritance{.table = table, .kind = Inheritance::EKind::Partition},
                          mPlace);
    }
}

void PostgresTree::ReadIndex(const Node& node)
{
    if (!node.contains("unique"))
        return mNotes->CountSkipped();
    KeyDeclaration key{.name = TextOf(node, "idxname")};
    for (const Node& element : PartOf(node, "indexParams"))
        key.columns.push_back(TextOf(PartOf(element, "IndexElem"), "name"));
    const bool hasExpression =
        std::find(key.columns.begin(), key.columns.end(), "") != key.columns.end();
    if (hasExpression || node.contains("whereClause"))
        return mNotes->CountPartialKeys(1);
    mCatalogue->Alter(RelationOf(PartOf(node, "relation")), key, mPlace);
}

void PostgresTree::ReadComment(const Node& node)
{
    const bool isColumn = Says(node, "objtype", "OBJECT_COLUMN");
    std::vector<std::string> names =
        NamesOf(PartOf(PartOf(PartOf(node, "object"), "List"), "items"));
    const std::string text = TextOf(node, "comment");
    if (!isColumn)
        return mCatalogue->Alter(ToObjectName(names), DescribedTable{.description = text}, mPlace);
    if (names.size() < 2)
        return;
    const std::string column = std::move(names.back());
    names.pop_back();
    mCatalogue->Alter(ToObjectName(names), DescribedColumn{.name = column, .description = text},
                      mPlace);
}

void PostgresTree::ReadDrop(const Node& node)
{
    for (const Node& object : PartOf(node, "objects")) {
        const ObjectName name = ToObjectName(NamesOf(PartOf(PartOf(object, "List"), "items")));
        if (Says(node, "removeType", "OBJECT_INDEX"))
            mCatalogue->DropIndex(name.name);
        else
            mCatalogue->DropTable(name);
    }
}

void PostgresTree::ReadRename(const Node& node)
{
    const ObjectName table = RelationOf(PartOf(node, "relation"));
    const std::string name = TextOf(node, "newname");
    if (Says(node, "renameType", "OBJECT_TABLE"))
        mCatalogue->Alter(table, RenamedTable{.name = MarkQuoted({.name = name})}, mPlace);
    else if (Says(node, "renameType", "OBJECT_COLUMN"))
        mCatalogue->Alter(table,
                          RenamedColumn{.from = TextOf(node, "subname"),
                                        .to = name,
                                        .isQuoted = mQuoted.find(name) != mQuoted.end()},
                          mPlace);
}

void PostgresTree::ReadMove(const Node& node)
{
    mCatalogue->Alter(RelationOf(PartOf(node, "relation")),
                      RenamedTable{.name = {.schema = TextOf(node, "newschema")}}, mPlace);
}

void PostgresTree::ReadSetting(const Node& node)
{
    std::vector<std::string> schemas;
    for (const Node& argument : PartOf(node, "args"))
        schemas.push_back(TextOfConstant(argument));
    const bool isReset = !Says(node, "kind", "VAR_SET_VALUE");
    SetSearchPath(isReset ? std::vector<std::string>{"public"} : schemas);
}

void PostgresTree::ReadQuery(const Node& node)
{
    mNotes->CountSkipped();
    const Node& targets = PartOf(node, "targetList");
    if (!targets.is_array() || targets.empty())
        return;
    const Node& call = PartOf(PartOf(PartOf(targets.front(), "ResTarget"), "val"), "FuncCall");
    const Node& arguments = PartOf(call, "args");
    const std::vector<std::string> function = NamesOf(PartOf(call, "funcname"));
    if (function.empty() || function.back() != "set_config" || arguments.size() < 2 ||
        TextOfConstant(arguments[0]) != "search_path")
        return;
    SetSearchPath(SplitPath(TextOfConstant(arguments[1])));
}

ObjectName PostgresTree::MarkQuoted(ObjectName name) const
{
    for (const std::string* const part : {&name.schema, &name.name})
        if (mQuoted.find(*part) != mQuoted.end())
            name.quoted.insert(*part);
    return name;
}

void PostgresTree::SetSearchPath(const std::vector<std::string>& schemas)
{
    std::vector<std::string> path;
    for (const std::string& schema : schemas)
        if (!schema.empty() && schema != "$user" && schema != "pg_catalog")
            path.push_back(schema);
    mCatalogue->SetSearchPath(std::move(path));
}

} // namespace qe::tool
