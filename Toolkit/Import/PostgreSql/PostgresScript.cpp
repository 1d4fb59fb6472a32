#include "Toolkit/Import/PostgreSql/PostgresScript.h"

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Ddl/ScriptWalk.h"
#include "Toolkit/Import/Dialects/DeclarationReader.h"
#include "Toolkit/Import/PostgreSql/PostgresParser.h"
#include "Toolkit/Import/PostgreSql/PostgresTree.h"

#include <nlohmann/json.hpp>

#include <string>

namespace qe::tool {

namespace {

class PostgresReader
{
public:
    explicit PostgresReader(ReadingNotes& notes)
        : mNotes(notes),
          mCatalogue(EDialect::PostgreSql, notes),
          mTolerant(EDialect::PostgreSql, mCatalogue, notes)
    {}

    void Read(const ScriptStatement& statement, const ScriptPlace& place)
    {
        switch (statement.kind) {
        case EStatementKind::Other:
        case EStatementKind::Routine:
        case EStatementKind::Copy:
        case EStatementKind::RenameTable:
            return mNotes.CountSkipped();
        default:
            break;
        }
        try {
            PostgresTree tree(mCatalogue, mNotes, place,
                              ListQuotedNames(statement.tokens, EDialect::PostgreSql));
            if (!tree.Read(ParsePostgres(statement.text)))
                mNotes.CountSkipped();
        } catch (const PostgresSyntaxError& error) {
            mNotes.Tell({.path = place.path, .line = place.line + error.GetLine()},
                        std::string("not as PostgreSQL 15 reads it: ") + error.what());
            mTolerant.Read(statement, place);
        }
    }

    DatabaseSchema Finish() { return mCatalogue.Finish(); }

private:
    ReadingNotes& mNotes;
    Catalogue mCatalogue;
    DeclarationReader mTolerant;
};

} // namespace

DatabaseSchema ReadPostgresScripts(std::span<const ScriptText> scripts,
                                   const ProgressObserver& observer)
{
    ReadingNotes notes;
    PostgresReader reader(notes);
    WalkScripts(scripts, EDialect::PostgreSql, notes, observer,
                [&reader](const ScriptStatement& statement, const ScriptPlace& place) {
                    reader.Read(statement, place);
                });
    DatabaseSchema schema = reader.Finish();
    schema.notes = notes.List();
    schema.origin = std::string(DialectName(EDialect::PostgreSql)) + ", " + notes.DescribeExtent();
    return schema;
}

} // namespace qe::tool
