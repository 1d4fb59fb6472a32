#ifndef TOOLKIT_IMPORT_SQLITE_SCRIPTDATABASE_H
#define TOOLKIT_IMPORT_SQLITE_SCRIPTDATABASE_H

#include "Toolkit/Import/Sqlite/SqliteDatabase.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace qe::tool {

struct StatementStart;

/// The database that the statements of SQL scripts create in memory.
///
/// SQLite looks through all tables at each statement that creates one, so that many tables would
/// cost the square of their number. As long as statements only create tables and indexes, which
/// know nothing of other tables, they are therefore spread over many small databases. The first
/// statement of another kind runs all of them again in one database, where the rest runs too: what
/// comes of the statements is always what one database makes of them.
class ScriptDatabase
{
public:
    ScriptDatabase();

    /// Runs the first statement that stands in `script` from `offset` on; the script must outlive
    /// the database. Returns the offset behind it; the end of the script when there was none.
    /// Throws a SqliteError when the statement is wrong.
    std::size_t ExecuteFirst(const std::string& script, std::size_t offset);

    /// Returns the databases that hold the tables.
    [[nodiscard]] const std::vector<SqliteDatabase>& GetParts() const { return mParts; }

private:
    /// A statement that was run.
    struct Step
    {
        const std::string* script;
        std::size_t offset;
    };

    /// Returns the part in which the statement can be run on its own; merges the parts when there
    /// is none.
    [[nodiscard]] SqliteDatabase& ChoosePart(const StatementStart& start);
    [[nodiscard]] SqliteDatabase& ChoosePartOfTable(const StatementStart& start);
    [[nodiscard]] SqliteDatabase& ChoosePartOfIndex(const StatementStart& start);
    [[nodiscard]] SqliteDatabase& Merge();

    /// The first part is the only one that statements which create nothing are run in.
    std::vector<SqliteDatabase> mParts;
    std::size_t mTablesInLast = 0;
    /// The part of each table and index, by name.
    std::map<std::string, std::size_t> mPartOfName;
    std::vector<Step> mSteps;
    bool mIsMerged = false;
};

} // namespace qe::tool

#endif
