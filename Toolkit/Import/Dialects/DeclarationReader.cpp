#include "Toolkit/Import/Dialects/DeclarationReader.h"

#include "Toolkit/Import/Dialects/AlterationReader.h"
#include "Toolkit/Import/Dialects/ElementReader.h"

#include <utility>

namespace qe::tool {

namespace {

/// Skips up to the word, outside of parentheses. Returns false when it does not come.
bool SkipThrough(TokenCursor& cursor, std::string_view word)
{
    while (!cursor.IsAtEnd()) {
        if (cursor.Skip(word))
            return true;
        cursor.Advance();
    }
    return false;
}

void ReadTableOptions(TokenCursor& cursor, TableDeclaration& table)
{
    while (!cursor.IsAtEnd()) {
        if (cursor.Skip("inherits")) {
            const std::optional<TokenCursor> parents = cursor.ReadParentheses();
            for (TokenCursor parent :
                 parents ? parents->SplitAtCommas() : std::vector<TokenCursor>())
                if (const std::optional<ObjectName> name = parent.ReadObjectName())
                    table.inheritances.push_back({.table = *name});
        } else if (cursor.Skip("comment")) {
            cursor.SkipSign('=');
            if (cursor.Peek().kind == EToken::Text)
                table.description = ToContent(cursor.Peek());
        } else {
            cursor.Advance();
        }
    }
}

} // namespace

void DeclarationReader::Read(const ScriptStatement& statement, const ScriptPlace& place)
{
    mPlace = place;
    const TokenCursor cursor(statement.tokens, mDialect);
    try {
        switch (statement.kind) {
        case EStatementKind::CreateTable:
            return ReadTable(cursor);
        case EStatementKind::AlterTable:
            return AlterationReader(*mCatalogue, mPlace).Read(cursor);
        case EStatementKind::CreateUniqueIndex:
            return ReadUniqueIndex(cursor);
        case EStatementKind::DropTable:
        case EStatementKind::DropIndex:
            return ReadDrop(cursor, statement.kind);
        case EStatementKind::RenameTable:
            return ReadRename(cursor);
        case EStatementKind::Comment:
            return ReadComment(cursor);
        case EStatementKind::ChooseSchema:
            return ReadSchemaChoice(cursor);
        case EStatementKind::CreateSchema:
        case EStatementKind::Copy:
        case EStatementKind::Routine:
        case EStatementKind::Other:
            break;
        }
        mNotes->CountSkipped();
    } catch (const UnreadableElement& error) {
        mNotes->Tell(place, "cannot be read, " + std::string(error.what()));
    }
}

void DeclarationReader::ReadTable(TokenCursor cursor)
{
    bool isTemporary = false;
    while (!cursor.IsAtEnd() && !cursor.Skip("table")) {
        isTemporary = isTemporary || cursor.IsAtAny({"temp", "temporary"});
        cursor.Advance();
    }
    const bool isConditional = cursor.Skip({"if", "not", "exists"});
    TableDeclaration table;
    std::optional<ObjectName> name = cursor.ReadObjectName();
    if (!name || name->name.empty())
        throw UnreadableElement("a table without a name");
    table.name = std::move(*name);
    const bool isLocal = mDialect == EDialect::SqlServer && table.name.name.starts_with('#');
    if (isTemporary || isLocal || (isConditional && mCatalogue->HasTable(table.name))) {
        mNotes->CountSkipped();
        return;
    }
    ReadTableBody(cursor, table);
    ReadTableOptions(cursor, table);
    mCatalogue->AddTable(std::move(table), mPlace);
}

void DeclarationReader::ReadTableBody(TokenCursor& cursor, TableDeclaration& table)
{
    using EKind = Inheritance::EKind;
    const bool isPartition = cursor.Skip({"partition", "of"});
    if (isPartition || cursor.Skip("like")) {
        if (const std::optional<ObjectName> other = cursor.ReadObjectName())
            table.inheritances.push_back(
                {.table = *other, .kind = isPartition ? EKind::Partition : EKind::ColumnsAndKeys});
        return;
    }
    if (cursor.Skip("of"))
        static_cast<void>(cursor.ReadObjectName());
    const std::optional<TokenCursor> elements = cursor.ReadParentheses();
    const bool isQuery = elements && elements->IsAtAny({"select", "with"});
    if (elements && !isQuery)
        ElementReader(table).ReadAll(*elements);
    if (!table.columns.empty() || !table.inheritances.empty())
        return;
    if (!isQuery && !cursor.IsAtAny({"as", "select", "with", "using"}))
        throw UnreadableElement("a table without columns: " + table.name.name);
    mNotes->Tell(mPlace,
                 "the columns of a table that a query makes are not known: " + table.name.name);
}

void DeclarationReader::ReadUniqueIndex(TokenCursor cursor)
{
    static_cast<void>(SkipThrough(cursor, "index"));
    cursor.Skip("concurrently");
    cursor.Skip({"if", "not", "exists"});
    KeyDeclaration key;
    if (!cursor.IsAt("on")) {
        const std::optional<ObjectName> name = cursor.ReadObjectName();
        key.name = name ? name->name : "";
    }
    static_cast<void>(SkipThrough(cursor, "on"));
    cursor.Skip("only");
    const std::optional<ObjectName> table = cursor.ReadObjectName();
    while (table && !cursor.IsAtEnd() && !cursor.IsAtSign('('))
        cursor.Advance();
    const std::optional<TokenCursor> inner = cursor.ReadParentheses();
    if (!table || !inner)
        throw UnreadableElement("a unique index without a table or columns");
    std::optional<std::vector<std::string>> columns = inner->ReadNames();
    if (!columns || SkipThrough(cursor, "where")) {
        mNotes->CountPartialKeys(1);
        return;
    }
    key.columns = std::move(*columns);
    mCatalogue->Alter(*table, key, mPlace);
}

void DeclarationReader::ReadDrop(TokenCursor cursor, EStatementKind kind)
{
    const bool isTable = kind == EStatementKind::DropTable;
    static_cast<void>(SkipThrough(cursor, isTable ? "table" : "index"));
    cursor.Skip("concurrently");
    cursor.Skip({"if", "exists"});
    for (TokenCursor piece : cursor.SplitAtCommas())
        if (const std::optional<ObjectName> name = piece.ReadObjectName()) {
            if (isTable)
                mCatalogue->DropTable(*name);
            else
                mCatalogue->DropIndex(name->name);
        }
}

void DeclarationReader::ReadRename(TokenCursor cursor)
{
    cursor.Skip({"rename", "table"});
    for (TokenCursor piece : cursor.SplitAtCommas()) {
        const std::optional<ObjectName> from = piece.ReadObjectName();
        if (!from || !piece.Skip("to"))
            throw UnreadableElement("a table that is renamed to nothing");
        if (const std::optional<ObjectName> to = piece.ReadObjectName())
            mCatalogue->Alter(*from, RenamedTable{.name = *to}, mPlace);
    }
}

void DeclarationReader::ReadComment(TokenCursor cursor)
{
    cursor.Skip({"comment", "on"});
    const bool isColumn = cursor.Skip("column");
    cursor.Skip("table");
    std::vector<std::string> parts = cursor.ReadParts();
    if (parts.size() < (isColumn ? 2U : 1U) || !cursor.Skip("is"))
        throw UnreadableElement("a comment on nothing");
    const bool hasText = cursor.Peek().kind == EToken::Text;
    const std::string text = hasText ? ToContent(cursor.Peek()) : std::string();
    const std::string column = isColumn ? parts.back() : std::string();
    if (isColumn)
        parts.pop_back();
    const ObjectName table{.schema = parts.size() > 1 ? parts[parts.size() - 2] : std::string(),
                           .name = parts.back()};
    if (isColumn)
        mCatalogue->Alter(table, DescribedColumn{.name = column, .description = text}, mPlace);
    else
        mCatalogue->Alter(table, DescribedTable{.description = text}, mPlace);
}

void DeclarationReader::ReadSchemaChoice(TokenCursor cursor)
{
    mNotes->CountSkipped();
    if (mDialect != EDialect::MySql || !cursor.Skip("use"))
        return;
    if (std::optional<std::string> schema = cursor.ReadName())
        mCatalogue->SetSearchPath({std::move(*schema)});
}

} // namespace qe::tool
