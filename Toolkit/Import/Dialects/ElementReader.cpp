#include "Toolkit/Import/Dialects/ElementReader.h"

#include <utility>

namespace qe::tool {

namespace {

/// Skips how an index is stored.
void SkipStorage(TokenCursor& cursor)
{
    while (cursor.SkipAny({"clustered", "nonclustered", "hash"}) ||
           cursor.Skip({"nulls", "not", "distinct"}) || cursor.Skip({"nulls", "distinct"}) ||
           cursor.Skip({"using", "btree"}) || cursor.Skip({"using", "hash"})) {}
}

bool BeginsConstraint(const TokenCursor& cursor)
{
    return cursor.IsAtAny({"constraint", "primary", "unique", "foreign"});
}

/// Whether the dialect declares indexes among the elements of a table.
bool HasIndexElements(EDialect dialect)
{
    return dialect == EDialect::MySql || dialect == EDialect::SqlServer;
}

/// Skips an element that says nothing on keys. Returns whether there was one.
bool SkipElement(TokenCursor& cursor)
{
    const SqlToken next = cursor.Peek(1);
    const bool isCheck =
        cursor.IsAtAny({"check", "exclude"}) && (next.IsSign('(') || next.IsWord("using"));
    const bool isPeriod = cursor.IsAt("period") && next.IsWord("for");
    const bool isLog = cursor.IsAt("supplemental") && next.IsWord("log");
    const bool isText =
        cursor.IsAtAny({"fulltext", "spatial", "vector"}) && cursor.GetDialect() == EDialect::MySql;
    const bool isDefault = cursor.IsAt("default") && cursor.GetDialect() == EDialect::SqlServer;
    if (!isCheck && !isPeriod && !isLog && !isText && !isDefault)
        return false;
    cursor.Advance();
    while (!cursor.IsAtEnd() && !BeginsConstraint(cursor))
        cursor.Advance();
    return true;
}

} // namespace

void ElementReader::ReadAll(const TokenCursor& elements)
{
    for (TokenCursor piece : elements.SplitAtCommas())
        while (!piece.IsAtEnd())
            Read(piece);
}

void ElementReader::Read(TokenCursor& cursor)
{
    std::string name;
    const bool isNamed = cursor.Skip("constraint");
    if (isNamed && !BeginsConstraint(cursor))
        name = cursor.ReadName().value_or("");
    if (ReadConstraint(cursor, name) || isNamed) {
        while (!cursor.IsAtEnd() && !BeginsConstraint(cursor) && !cursor.IsAt("add"))
            cursor.Advance();
        return;
    }
    if (SkipElement(cursor) || ReadIndex(cursor))
        return;
    if (cursor.IsAt("like") && !cursor.Peek(1).IsSign('(')) {
        cursor.Advance();
        const std::optional<ObjectName> table = cursor.ReadObjectName();
        const bool hasKeys = cursor.GetDialect() == EDialect::MySql || cursor.IsAt("including");
        if (table)
            mTable->inheritances.push_back({.table = *table,
                                            .kind = hasKeys ? Inheritance::EKind::ColumnsAndKeys
                                                            : Inheritance::EKind::Columns});
        cursor.GoTo(',');
        return;
    }
    const bool isQuoted = cursor.Peek().kind == EToken::QuotedName;
    const std::optional<std::string> column = cursor.ReadName();
    if (!column)
        throw UnreadableElement("no column and no key: " + std::string(cursor.Peek().text));
    ReadColumn(cursor, *column);
    mTable->columns.back().isQuoted = isQuoted;
}

void ElementReader::ReadColumn(TokenCursor& cursor, const std::string& name)
{
    SchemaColumn column{.name = name};
    mConstraintName.clear();
    ReadType(cursor, column);
    while (!cursor.IsAtEnd() && !cursor.IsAtAny({"add", "modify", "drop"}))
        if (!ReadAttribute(cursor, column) && !ReadConstraint(cursor, mConstraintName))
            cursor.Advance();
    mTable->columns.push_back(std::move(column));
}

void ElementReader::ReadType(TokenCursor& cursor, SchemaColumn& column)
{
    const EDialect dialect = cursor.GetDialect();
    if (cursor.IsAtAny({"not", "null", "default", "references", "check", "generated", "as"}) ||
        BeginsConstraint(cursor))
        return;
    const bool isSerial = cursor.IsAtAny({"serial", "bigserial", "smallserial"}) &&
                          (dialect == EDialect::MySql || dialect == EDialect::PostgreSql);
    const std::optional<ObjectName> type = cursor.ReadObjectName();
    column.isNotNull = isSerial;
    if (type && cursor.IsAtSign('('))
        mLengths[column.name] = cursor.Peek(1).text;
    if (isSerial && dialect == EDialect::MySql)
        mTable->keys.push_back({.columns = {column.name}});
}

bool ElementReader::ReadAttribute(TokenCursor& cursor, SchemaColumn& column)
{
    if (cursor.Skip({"not", "null"}) || cursor.Skip({"default", "on", "null"}) ||
        cursor.SkipAny({"identity", "auto_increment"})) {
        column.isNotNull = true;
        return true;
    }
    if (cursor.Skip({"set", "null"}) || cursor.Skip({"set", "default"}))
        return true;
    if (cursor.Skip({"foreign", "key", "references"}) || cursor.Skip("references")) {
        ReadReference(cursor, {.name = mConstraintName, .columns = {column.name}});
        return true;
    }
    if (cursor.Skip("null")) {
        column.isNotNull = false;
        return true;
    }
    if (cursor.Skip("default")) {
        cursor.Advance();
        return true;
    }
    if (cursor.Skip("constraint")) {
        mConstraintName = cursor.ReadName().value_or("");
        return true;
    }
    if (cursor.IsAt("comment") && cursor.Peek(1).kind == EToken::Text) {
        cursor.Advance();
        column.description = ToContent(cursor.Peek());
        cursor.Advance();
        return true;
    }
    return ReadColumnKey(cursor, column.name);
}

bool ElementReader::ReadColumnKey(TokenCursor& cursor, const std::string& column)
{
    const bool isPrimary = cursor.IsAt("primary") && cursor.Peek(1).IsWord("key");
    if (!isPrimary && !cursor.IsAt("unique"))
        return false;
    TokenCursor behind = cursor;
    behind.Advance();
    behind.SkipAny({"key", "index"});
    SkipStorage(behind);
    // Constraints of the table may follow a column without a comma.
    if (behind.IsAtSign('('))
        return false;
    cursor = behind;
    mTable->keys.push_back({.name = mConstraintName,
                            .kind = isPrimary ? EKeyKind::Primary : EKeyKind::Unique,
                            .columns = {column}});
    return true;
}

bool ElementReader::ReadConstraint(TokenCursor& cursor, const std::string& name)
{
    if (cursor.Skip({"foreign", "key"})) {
        ReadForeignKey(cursor, name);
        return true;
    }
    return ReadKey(cursor, name);
}

bool ElementReader::ReadKey(TokenCursor& cursor, const std::string& name)
{
    const bool isPrimary = cursor.Skip({"primary", "key"});
    if (!isPrimary && !cursor.Skip("unique"))
        return false;
    cursor.SkipAny({"key", "index"});
    SkipStorage(cursor);
    KeyDeclaration key{.name = name, .kind = isPrimary ? EKeyKind::Primary : EKeyKind::Unique};
    if (!cursor.IsAtSign('('))
        key.name = cursor.ReadName().value_or(name);
    SkipStorage(cursor);
    const std::optional<TokenCursor> columns = cursor.ReadParentheses();
    if (!columns)
        throw UnreadableElement("a key without columns");
    AddKey(key, *columns);
    return true;
}

std::optional<std::vector<std::string>>
ElementReader::ReadKeyColumns(const TokenCursor& columns) const
{
    std::vector<std::string> names;
    for (TokenCursor piece : columns.SplitAtCommas()) {
        const std::optional<std::string> name = piece.ReadName();
        // The beginning of a column that is no shorter than the column is all of it.
        const std::optional<TokenCursor> length = piece.ReadParentheses();
        const auto declared = length && name ? mLengths.find(*name) : mLengths.end();
        if (length && (declared == mLengths.end() || declared->second != length->Peek().text))
            return std::nullopt;
        if (piece.Skip("collate"))
            static_cast<void>(piece.ReadName());
        piece.SkipAny({"asc", "desc"});
        if (!name || !piece.IsAtEnd())
            return std::nullopt;
        names.push_back(*name);
    }
    return names;
}

void ElementReader::AddKey(const KeyDeclaration& key, const TokenCursor& columns)
{
    std::optional<std::vector<std::string>> names = ReadKeyColumns(columns);
    if (!names) {
        ++mTable->partialKeys;
        return;
    }
    mTable->keys.push_back({.name = key.name, .kind = key.kind, .columns = std::move(*names)});
}

void ElementReader::ReadForeignKey(TokenCursor& cursor, const std::string& name)
{
    ForeignKeyDeclaration key{.name = name};
    cursor.Skip({"if", "not", "exists"});
    if (!cursor.IsAtSign('('))
        key.name = cursor.ReadName().value_or(name);
    const std::optional<TokenCursor> inner = cursor.ReadParentheses();
    std::optional<std::vector<std::string>> columns;
    if (inner)
        columns = inner->ReadNames();
    if (!columns || !cursor.Skip("references"))
        throw UnreadableElement("a foreign key without columns or without a table");
    key.columns = std::move(*columns);
    ReadReference(cursor, std::move(key));
}

void ElementReader::ReadReference(TokenCursor& cursor, ForeignKeyDeclaration key)
{
    std::optional<ObjectName> table = cursor.ReadObjectName();
    if (!table)
        throw UnreadableElement("a foreign key without a table");
    key.table = std::move(*table);
    if (const std::optional<TokenCursor> inner = cursor.ReadParentheses()) {
        std::optional<std::vector<std::string>> columns = inner->ReadNames();
        if (!columns)
            throw UnreadableElement("a foreign key to what are no columns");
        key.referenced = std::move(*columns);
    }
    mTable->foreignKeys.push_back(std::move(key));
}

bool ElementReader::ReadIndex(TokenCursor& cursor)
{
    if (!HasIndexElements(cursor.GetDialect()) || !cursor.SkipAny({"key", "index"}))
        return false;
    // Only SQL Server has unique ones here: "INDEX name UNIQUE (columns)".
    KeyDeclaration key;
    if (!cursor.IsAtSign('('))
        key.name = cursor.ReadName().value_or("");
    const bool isUnique = cursor.Skip("unique");
    SkipStorage(cursor);
    const std::optional<TokenCursor> columns = cursor.ReadParentheses();
    if (isUnique && columns)
        AddKey(key, *columns);
    cursor.GoTo(',');
    return true;
}

} // namespace qe::tool
