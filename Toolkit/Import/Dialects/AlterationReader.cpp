#include "Toolkit/Import/Dialects/AlterationReader.h"

#include "Toolkit/Import/Dialects/ElementReader.h"

#include <optional>
#include <utility>

namespace qe::tool {

namespace {

bool BeginsAction(const TokenCursor& cursor)
{
    return cursor.IsAtAny({"add", "drop", "modify", "change", "alter", "rename", "with", "set",
                           "attach", "inherit", "enable", "disable", "convert", "order"});
}

} // namespace

void AlterationReader::Read(TokenCursor cursor)
{
    while (!cursor.IsAtEnd() && !cursor.Skip("table"))
        cursor.Advance();
    cursor.Skip({"if", "exists"});
    cursor.Skip("only");
    std::optional<ObjectName> table = cursor.ReadObjectName();
    if (!table)
        throw UnreadableElement("a change of a table without a name");
    mTable = std::move(*table);
    for (const TokenCursor& piece : cursor.SplitAtCommas())
        ReadPiece(piece);
}

void AlterationReader::ReadPiece(TokenCursor piece)
{
    if (!BeginsAction(piece)) {
        if (mContinued == EContinued::Elements)
            ReadElements(piece);
        else if (mContinued == EContinued::DroppedColumns)
            ReadDropColumn(piece);
        else if (mContinued == EContinued::DroppedKeys)
            Alter(DroppedKey{.name = piece.ReadName().value_or("")});
        return;
    }
    while (!piece.IsAtEnd())
        ReadAction(piece);
}

void AlterationReader::ReadAction(TokenCursor& piece)
{
    if (piece.Skip({"with", "check"}) || piece.Skip({"with", "nocheck"}))
        return;
    mContinued = EContinued::Nothing;
    if (piece.Skip("add"))
        ReadAdd(piece);
    else if (piece.Skip("drop"))
        ReadDrop(piece);
    else if (piece.Skip("modify"))
        ReadModify(piece);
    else if (piece.Skip("change"))
        ReadChange(piece);
    else if (piece.Skip("alter"))
        ReadAlterColumn(piece);
    else if (piece.Skip("rename"))
        ReadRename(piece);
    else if (piece.Skip({"set", "schema"}))
        Alter(RenamedTable{.name = {.schema = piece.ReadName().value_or("")}});
    else
        piece.Advance();
}

void AlterationReader::ReadAdd(TokenCursor& piece)
{
    if (piece.IsAt("partition") || piece.IsAt("subpartition"))
        return piece.GoTo(',');
    piece.Skip("column");
    piece.Skip({"if", "not", "exists"});
    // SQL Server lets a list of elements follow one verb.
    if (piece.GetDialect() == EDialect::SqlServer)
        mContinued = EContinued::Elements;
    ReadElements(piece);
}

void AlterationReader::ReadElements(TokenCursor& piece)
{
    TableDeclaration added;
    ElementReader reader(added);
    if (const std::optional<TokenCursor> inner = piece.ReadParentheses())
        reader.ReadAll(*inner);
    else
        while (!piece.IsAtEnd() && !piece.IsAtAny({"add", "modify", "drop"}))
            reader.Read(piece);
    for (const SchemaColumn& column : added.columns)
        Alter(column);
    for (const KeyDeclaration& key : added.keys)
        Alter(key);
    for (const ForeignKeyDeclaration& key : added.foreignKeys)
        Alter(key);
    mCatalogue->CountPartialKeys(added.partialKeys);
}

void AlterationReader::ReadDrop(TokenCursor& piece)
{
    if (piece.Skip({"primary", "key"}))
        return Alter(DroppedPrimaryKey());
    if (piece.SkipAny({"constraint", "index", "key", "check"}) || piece.Skip({"foreign", "key"})) {
        piece.Skip({"if", "exists"});
        mContinued = EContinued::DroppedKeys;
        return Alter(DroppedKey{.name = piece.ReadName().value_or("")});
    }
    if (piece.IsAtAny({"partition", "subpartition", "unique", "period"}))
        return piece.GoTo(',');
    piece.Skip("column");
    piece.Skip({"if", "exists"});
    mContinued = EContinued::DroppedColumns;
    if (const std::optional<TokenCursor> inner = piece.ReadParentheses())
        for (TokenCursor column : inner->SplitAtCommas())
            ReadDropColumn(column);
    else
        ReadDropColumn(piece);
}

void AlterationReader::ReadDropColumn(TokenCursor& piece)
{
    if (std::optional<std::string> name = piece.ReadName())
        Alter(DroppedColumn{.name = std::move(*name)});
    piece.SkipAny({"cascade", "restrict"});
}

void AlterationReader::ReadModify(TokenCursor& piece)
{
    piece.Skip("column");
    piece.Skip({"if", "exists"});
    const auto readOne = [this](TokenCursor& definition) {
        if (const std::optional<std::string> name = definition.ReadName())
            ReadNewDefinition(definition, *name);
        else
            definition.Advance();
    };
    if (const std::optional<TokenCursor> inner = piece.ReadParentheses())
        for (TokenCursor definition : inner->SplitAtCommas())
            readOne(definition);
    else
        readOne(piece);
}

void AlterationReader::ReadNewDefinition(TokenCursor& definition, const std::string& name)
{
    TokenCursor words = definition;
    bool saysNull = false;
    while (!words.IsAtEnd() && !words.IsAtAny({"add", "modify"})) {
        saysNull = saysNull || words.IsAt("null");
        words.Advance();
    }
    TableDeclaration changed;
    ElementReader(changed).ReadColumn(definition, name);
    // In Oracle a definition changes only what it names.
    if (saysNull || definition.GetDialect() != EDialect::Oracle)
        Alter(ChangedColumn{.name = name, .isNotNull = changed.columns.front().isNotNull});
    for (const KeyDeclaration& key : changed.keys)
        Alter(key);
    for (const ForeignKeyDeclaration& key : changed.foreignKeys)
        Alter(key);
}

void AlterationReader::ReadChange(TokenCursor& piece)
{
    piece.Skip("column");
    piece.Skip({"if", "exists"});
    const std::optional<std::string> from = piece.ReadName();
    const bool isQuoted = piece.Peek().kind == EToken::QuotedName;
    const std::optional<std::string> to = piece.ReadName();
    if (!from || !to)
        throw UnreadableElement("a changed column without a name");
    if (*from != *to)
        Alter(RenamedColumn{.from = *from, .to = *to, .isQuoted = isQuoted});
    ReadNewDefinition(piece, *to);
}

void AlterationReader::ReadAlterColumn(TokenCursor& piece)
{
    piece.Skip("column");
    piece.Skip({"if", "exists"});
    const std::optional<std::string> name = piece.ReadName();
    if (!name)
        return;
    if (piece.Skip({"set", "not", "null"}))
        Alter(ChangedColumn{.name = *name, .isNotNull = true});
    else if (piece.Skip({"drop", "not", "null"}))
        Alter(ChangedColumn{.name = *name, .isNotNull = false});
    else if (piece.GetDialect() == EDialect::SqlServer && !piece.IsAtAny({"add", "drop"}))
        ReadNewDefinition(piece, *name);
    else
        piece.GoTo(',');
}

void AlterationReader::ReadRename(TokenCursor& piece)
{
    if (piece.SkipAny({"constraint", "index", "key"}))
        return piece.GoTo(',');
    const bool isTable = piece.SkipAny({"to", "as"});
    if (isTable) {
        if (const std::optional<ObjectName> name = piece.ReadObjectName())
            Alter(RenamedTable{.name = *name});
        return;
    }
    piece.Skip("column");
    const std::optional<std::string> from = piece.ReadName();
    if (!from || !piece.Skip("to"))
        return;
    const bool isQuoted = piece.Peek().kind == EToken::QuotedName;
    Alter(
        RenamedColumn{.from = *from, .to = piece.ReadName().value_or(*from), .isQuoted = isQuoted});
}

} // namespace qe::tool
