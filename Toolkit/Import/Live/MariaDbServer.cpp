#include "Toolkit/Import/Live/MariaDbServer.h"

#include "Toolkit/Import/Live/LiveTables.h"
#include "Toolkit/Import/Live/MariaDbConnection.h"
#include "Toolkit/Import/Live/ServerUrl.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

using Row = MariaDbConnection::Row;

/// Whatever else there is, such as a sequence, is no table.
constexpr const char* kTables = R"(
    SELECT TABLE_SCHEMA, TABLE_NAME, TABLE_TYPE, TABLE_COMMENT, TABLE_ROWS
      FROM information_schema.TABLES
     WHERE TABLE_TYPE IN ('BASE TABLE', 'SYSTEM VERSIONED', 'VIEW') AND )";
constexpr const char* kNotOfServer =
    "TABLE_SCHEMA NOT IN ('information_schema', 'mysql', 'performance_schema', 'sys')";
constexpr const char* kTableOrder = " ORDER BY TABLE_SCHEMA, TABLE_NAME";

constexpr const char* kColumns = R"(
    SELECT TABLE_SCHEMA, TABLE_NAME, COLUMN_NAME, IS_NULLABLE, COLUMN_COMMENT
      FROM information_schema.COLUMNS
     WHERE TABLE_SCHEMA = )";
constexpr const char* kColumnOrder = " ORDER BY TABLE_NAME, ORDINAL_POSITION";

/// An expression has no column.
constexpr const char* kKeys = R"(
    SELECT TABLE_SCHEMA, TABLE_NAME, INDEX_NAME, IF(SUB_PART IS NULL, COLUMN_NAME, NULL)
      FROM information_schema.STATISTICS
     WHERE NON_UNIQUE = 0 AND TABLE_SCHEMA = )";
constexpr const char* kKeyOrder = " ORDER BY TABLE_NAME, INDEX_NAME, SEQ_IN_INDEX";

constexpr const char* kForeignKeys = R"(
    SELECT TABLE_SCHEMA, TABLE_NAME, CONSTRAINT_NAME, REFERENCED_TABLE_SCHEMA,
           REFERENCED_TABLE_NAME, COLUMN_NAME, REFERENCED_COLUMN_NAME
      FROM information_schema.KEY_COLUMN_USAGE
     WHERE REFERENCED_TABLE_NAME IS NOT NULL AND TABLE_SCHEMA = )";
constexpr const char* kForeignKeyOrder = " ORDER BY TABLE_NAME, CONSTRAINT_NAME, ORDINAL_POSITION";

/// Names may hold dots, but no zeros.
std::string ToId(const Row& row)
{
    return row[0] + '\0' + row[1];
}

LiveTable ToTable(const Row& row)
{
    const bool isView = row[2] == "VIEW";
    return {.id = ToId(row),
            .name = {.schema = row[0], .name = row[1]},
            .description = isView ? "" : row[3],
            .rows = ToRowCount(row[4]),
            .kind = isView ? LiveTable::EKind::View : LiveTable::EKind::Table};
}

class MariaDbServer : public LiveServer
{
public:
    MariaDbServer(const ServerUrl& url, const std::string& place, const ServerTimeLimits& limits)
        : mDatabase(url.database), mConnection(url, place, limits)
    {
        const bool isMariaDb = mConnection.GetVersion().find("MariaDB") != std::string::npos;
        constexpr int kMilliseconds = 1000;
        mConnection.Run(isMariaDb ? "SET SESSION max_statement_time = " +
                                        std::to_string(limits.statement.count())
                                  : "SET SESSION max_execution_time = " +
                                        std::to_string(limits.statement.count() * kMilliseconds));
        mConnection.Run("START TRANSACTION WITH CONSISTENT SNAPSHOT, READ ONLY");
    }

    /// Without patterns of schemas, tables are those of the database that the URL names.
    LiveListing List(const TablePatterns& patterns) override
    {
        const std::string version = mConnection.GetVersion();
        const std::size_t end = version.find('-');
        const bool isMariaDb = version.find("MariaDB") != std::string::npos;
        LiveListing listing{.server = (isMariaDb ? "MariaDB " : "MySQL ") + version.substr(0, end),
                            .database = mDatabase,
                            .defaultSchema = mDatabase};
        const bool isOne = !mDatabase.empty() && patterns.schemas.empty();
        const std::string which =
            isOne ? "TABLE_SCHEMA = " + mConnection.Quote(mDatabase) : kNotOfServer;
        for (const Row& row : mConnection.Query(kTables + which + kTableOrder))
            listing.tables.push_back(ToTable(row));
        return listing;
    }

    void Describe(LiveTables& tables) override
    {
        std::vector<std::string> schemas;
        for (const LiveTable& table : tables.List())
            if (schemas.empty() || schemas.back() != table.name.schema)
                schemas.push_back(table.name.schema);
        for (const std::string& schema : schemas)
            Describe(tables, mConnection.Quote(schema));
    }

private:
    void Describe(LiveTables& tables, const std::string& schema)
    {
        for (const Row& row : mConnection.Query(kColumns + schema + kColumnOrder))
            tables.AddColumn(ToId(row),
                             {.name = row[2], .isNotNull = row[3] == "NO", .description = row[4]});
        for (const Row& row : mConnection.Query(kKeys + schema + kKeyOrder))
            tables.AddKeyColumn(ToId(row),
                                {.key = row[2],
                                 .kind = row[2] == "PRIMARY" ? EKeyKind::Primary : EKeyKind::Unique,
                                 .column = row[3]});
        for (const Row& row : mConnection.Query(kForeignKeys + schema + kForeignKeyOrder))
            tables.AddForeignKeyColumn(ToId(row), {.key = row[2],
                                                   .table = {.schema = row[3], .name = row[4]},
                                                   .column = row[5],
                                                   .referenced = row[6]});
    }

    std::string mDatabase;
    MariaDbConnection mConnection;
};

} // namespace

std::unique_ptr<LiveServer> ConnectMariaDb(const std::string& url, const ServerTimeLimits& limits)
{
    return std::make_unique<MariaDbServer>(ParseServerUrl(url), ToShownUrl(url), limits);
}

} // namespace qe::tool
