#ifndef TOOLKIT_IMPORT_DIALECTS_DECLARATIONREADER_H
#define TOOLKIT_IMPORT_DIALECTS_DECLARATIONREADER_H

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Ddl/StatementReader.h"
#include "Toolkit/Import/Dialects/TokenCursor.h"

namespace qe::tool {

/// Reads statements of any dialect into a catalogue, as far as they speak of tables and keys. What
/// it does not know within them is passed over; what looks like a table or key and cannot be read
/// is told.
class DeclarationReader
{
public:
    /// Refers to the catalogue and the notes.
    DeclarationReader(EDialect dialect, Catalogue& catalogue, ReadingNotes& notes)
        : mDialect(dialect), mCatalogue(&catalogue), mNotes(&notes)
    {}

    void Read(const ScriptStatement& statement, const ScriptPlace& place);

private:
    void ReadTable(TokenCursor cursor);
    /// Reads what follows the name of a table that is created.
    void ReadTableBody(TokenCursor& cursor, TableDeclaration& table);
    void ReadUniqueIndex(TokenCursor cursor);
    void ReadDrop(TokenCursor cursor, EStatementKind kind);
    void ReadRename(TokenCursor cursor);
    void ReadComment(TokenCursor cursor);
    void ReadSchemaChoice(TokenCursor cursor);

    EDialect mDialect;
    Catalogue* mCatalogue;
    ReadingNotes* mNotes;
    ScriptPlace mPlace{};
};

} // namespace qe::tool

#endif
