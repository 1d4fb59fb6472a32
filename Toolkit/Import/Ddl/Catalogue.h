#ifndef TOOLKIT_IMPORT_DDL_CATALOGUE_H
#define TOOLKIT_IMPORT_DDL_CATALOGUE_H

#include "Toolkit/Import/Ddl/CatalogueTable.h"
#include "Toolkit/Import/Ddl/Declarations.h"
#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <cstddef>
#include <deque>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

/// The tables that statements declare, change and drop, one after the other, as a server would keep
/// them.
class Catalogue
{
public:
    /// The notes, which it refers to, receive what cannot be made of the statements.
    Catalogue(EDialect dialect, ReadingNotes& notes);
    /// Is the same for tables of which those in one schema are shown without its name.
    Catalogue(std::string defaultSchema, ReadingNotes& notes);

    /// Sets where names without a schema are looked for; tables are created in the first.
    void SetSearchPath(std::vector<std::string> schemas);
    [[nodiscard]] SearchPath GetSearchPath() const { return mPath; }

    /// A table that there is stays as it is, and the new one is told.
    void AddTable(TableDeclaration declaration, const ScriptPlace& place);
    [[nodiscard]] bool HasTable(const ObjectName& table) const;
    /// Keys of tables that there are not yet wait until Finish; other changes of theirs are none.
    void Alter(const ObjectName& name, const Alteration& change, const ScriptPlace& place);
    /// Counts unique keys that say nothing on whole rows.
    void CountPartialKeys(std::size_t count) { mNotes->CountPartialKeys(count); }
    void DropTable(const ObjectName& name);
    /// Drops the unique index of that name, whatever its table is.
    void DropIndex(const std::string& name);

    /// Returns what was declared.
    [[nodiscard]] DatabaseSchema Finish();

private:
    class Applier;

    struct WaitingKey
    {
        ObjectName table{};
        Alteration change{};
        ScriptPlace place{};
        SearchPath path{};
    };

    [[nodiscard]] ObjectName Complete(ObjectName name) const;
    void AddColumns(CatalogueTable& table, std::vector<SchemaColumn> columns,
                    const ScriptPlace& place);
    void Inherit(CatalogueTable& table, const Inheritance& inheritance);

    ReadingNotes* mNotes;
    /// The schema whose name is not shown.
    std::string mDefaultSchema;
    SearchPath mPath;
    /// Elements stay where they are.
    std::deque<CatalogueTable> mTables;
    TableNames mNames;
    /// In lower case.
    std::set<std::string> mKeyNames;
    std::vector<WaitingKey> mWaiting;
};

} // namespace qe::tool

#endif
