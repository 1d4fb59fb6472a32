#include "Toolkit/Import/Dialects/DialectScript.h"

#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Ddl/ScriptWalk.h"
#include "Toolkit/Import/Dialects/DeclarationReader.h"

#include <string>

namespace qe::tool {

DatabaseSchema ReadDialectScripts(std::span<const ScriptText> scripts, EDialect dialect,
                                  const ProgressObserver& observer)
{
    ReadingNotes notes;
    Catalogue catalogue(dialect, notes);
    DeclarationReader reader(dialect, catalogue, notes);
    WalkScripts(scripts, dialect, notes, observer,
                [&reader](const ScriptStatement& statement, const ScriptPlace& place) {
                    reader.Read(statement, place);
                });
    DatabaseSchema schema = catalogue.Finish();
    schema.notes = notes.List();
    schema.origin = std::string(DialectName(dialect)) + ", " + notes.DescribeExtent();
    return schema;
}

} // namespace qe::tool
