#ifndef TOOLKIT_IMPORT_LIVE_LIVETABLES_H
#define TOOLKIT_IMPORT_LIVE_LIVETABLES_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Text/Progress.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

class ReadingNotes;

/// Returns the number of rows that a server tells; nothing where it counted none, as it does of
/// tables that it has not looked at yet.
[[nodiscard]] std::optional<std::uint64_t> ToRowCount(const std::string& text);

/// One column of a unique key.
struct LiveKeyColumn
{
    std::string key{};
    EKeyKind kind = EKeyKind::Unique;
    /// Empty where the key says nothing on whole rows: it is over an expression or the beginning of
    /// a column, or for some rows only.
    std::string column{};
};

/// One pair of columns of a foreign key.
struct LiveForeignKeyColumn
{
    std::string key{};
    ObjectName table{};
    std::string column{};
    /// Empty where the key leads to the primary key.
    std::string referenced{};
};

/// The tables that are read from a server, and what it says of them, column by column. Tables are
/// named by their ids; what is said of tables that are not read is passed over.
class LiveTables
{
public:
    LiveTables(std::vector<LiveTable> tables, ProgressObserver observer);

    [[nodiscard]] const std::vector<LiveTable>& List() const { return mTables; }
    /// Is told how many of the tables are read.
    void ShowProgress(std::size_t done) const;

    void AddColumn(std::string_view table, SchemaColumn column);
    /// The columns of a key come in their order.
    void AddKeyColumn(std::string_view table, LiveKeyColumn column);
    /// The columns of a key come in their order.
    void AddForeignKeyColumn(std::string_view table, LiveForeignKeyColumn column);

    /// Returns the database of these tables, with the notes. Foreign keys to other tables are left
    /// out and counted.
    [[nodiscard]] DatabaseSchema Finish(const std::string& defaultSchema, ReadingNotes& notes);

private:
    [[nodiscard]] TableDeclaration* Find(std::string_view table);
    /// Leaves out what leads to other tables, and returns how many keys those are.
    [[nodiscard]] std::size_t RemoveForeignKeysToOthers();

    std::vector<LiveTable> mTables;
    ProgressObserver mObserver;
    /// At the positions of the tables.
    std::vector<TableDeclaration> mDeclarations;
    std::map<std::string, std::size_t, std::less<>> mPositions;
};

} // namespace qe::tool

#endif
