#include "Toolkit/Import/Live/PostgresServer.h"

#include "Toolkit/Import/Live/LiveTables.h"
#include "Toolkit/Import/Live/PostgresConnection.h"
#include "Toolkit/Import/Live/ServerUrl.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

/// Rows are as PostgreSQL 11 and later tell them. Catalogues are named without their schema, which
/// is the only one in the search path by then.
constexpr const char* kTables = R"(
    SELECT c.oid, n.nspname, c.relname, d.description, c.reltuples::bigint, c.relispartition,
           c.relkind IN ('v', 'm'),
           EXISTS (SELECT FROM pg_depend e
                    WHERE e.classid = 'pg_class'::regclass AND e.objid = c.oid
                      AND e.deptype = 'e'),
           has_schema_privilege(n.oid, 'USAGE') AND has_any_column_privilege(c.oid, 'SELECT')
      FROM pg_class c
      JOIN pg_namespace n ON n.oid = c.relnamespace
      LEFT JOIN pg_description d
        ON d.classoid = 'pg_class'::regclass AND d.objoid = c.oid AND d.objsubid = 0
     WHERE c.relkind IN ('r', 'p', 'f', 'v', 'm') AND c.relpersistence <> 't'
       AND n.nspname NOT LIKE 'pg\_%' AND n.nspname <> 'information_schema'
     ORDER BY n.nspname, c.relname)";

constexpr const char* kColumns = R"(
    SELECT a.attrelid, a.attname, a.attnotnull, d.description
      FROM pg_attribute a
      LEFT JOIN pg_description d
        ON d.classoid = 'pg_class'::regclass AND d.objoid = a.attrelid AND d.objsubid = a.attnum
     WHERE a.attrelid = ANY ($1::oid[]) AND a.attnum > 0 AND NOT a.attisdropped
     ORDER BY a.attrelid, a.attnum)";

/// An expression has no column.
constexpr const char* kKeys = R"(
    SELECT i.indrelid, i.indexrelid, i.indisprimary,
           CASE WHEN i.indpred IS NULL THEN a.attname END
      FROM pg_index i
     CROSS JOIN LATERAL unnest(i.indkey::int2[]) WITH ORDINALITY AS k (attnum, place)
      LEFT JOIN pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = k.attnum
     WHERE i.indrelid = ANY ($1::oid[]) AND i.indisunique AND i.indisvalid
       AND NOT i.indisexclusion AND k.place <= i.indnkeyatts
     ORDER BY i.indrelid, i.indexrelid, k.place)";

/// Keys that follow from those of a table with partitions have a parent.
constexpr const char* kForeignKeys = R"(
    SELECT c.conrelid, c.oid, n.nspname, t.relname, a.attname, r.attname
      FROM pg_constraint c
      JOIN pg_class t ON t.oid = c.confrelid
      JOIN pg_namespace n ON n.oid = t.relnamespace
     CROSS JOIN LATERAL unnest(c.conkey, c.confkey) WITH ORDINALITY AS k (here, there, place)
      JOIN pg_attribute a ON a.attrelid = c.conrelid AND a.attnum = k.here
      JOIN pg_attribute r ON r.attrelid = c.confrelid AND r.attnum = k.there
     WHERE c.contype = 'f' AND c.conparentid = 0 AND c.conrelid = ANY ($1::oid[])
     ORDER BY c.conrelid, c.oid, k.place)";

LiveTable ToTable(const PostgresRows& rows, std::size_t row)
{
    using enum LiveTable::EKind;
    LiveTable table{.id = rows.Get(row, 0),
                    .name = {.schema = rows.Get(row, 1), .name = rows.Get(row, 2)},
                    .description = rows.Get(row, 3),
                    .rows = ToRowCount(rows.Get(row, 4)),
                    .isReadable = rows.IsTrue(row, 8)};
    if (rows.IsTrue(row, 7))
        table.kind = OfExtension;
    else if (rows.IsTrue(row, 6))
        table.kind = View;
    else if (rows.IsTrue(row, 5))
        table.kind = Partition;
    return table;
}

class PostgresServer : public LiveServer
{
public:
    PostgresServer(const std::string& url, const ServerTimeLimits& limits)
        : mConnection(ParseServerUrl(url), ToShownUrl(url), limits)
    {
        mConnection.Run("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
        const auto milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(limits.statement);
        static_cast<void>(
            mConnection.Query("SELECT pg_catalog.set_config('statement_timeout', $1, true)",
                              std::to_string(milliseconds.count())));
    }

    LiveListing List(const TablePatterns& /*patterns*/) override
    {
        LiveListing listing;
        const PostgresRows place =
            mConnection.Query("SELECT coalesce(pg_catalog.current_schema(), 'public'), "
                              "pg_catalog.current_database(), "
                              "pg_catalog.current_setting('server_version')");
        listing.defaultSchema = place.Get(0, 0);
        listing.database = place.Get(0, 1);
        // Packagers have more to say behind a blank.
        const std::string version = place.Get(0, 2);
        listing.server = "PostgreSQL " + version.substr(0, version.find(' '));
        mConnection.Run("SET LOCAL search_path TO pg_catalog, pg_temp");

        const PostgresRows rows = mConnection.Query(kTables);
        for (std::size_t i = 0; i < rows.GetCount(); ++i)
            listing.tables.push_back(ToTable(rows, i));
        return listing;
    }

    void Describe(LiveTables& tables) override
    {
        // Many are asked for at once, but not so many that nothing is to be seen for long.
        constexpr std::size_t kBatch = 1000;
        for (std::size_t begin = 0; begin < tables.List().size(); begin += kBatch) {
            const std::size_t end = std::min(begin + kBatch, tables.List().size());
            Describe(tables, begin, end);
            tables.ShowProgress(end);
        }
    }

private:
    void Describe(LiveTables& tables, std::size_t begin, std::size_t end)
    {
        std::string ids = "{";
        for (std::size_t i = begin; i < end; ++i)
            ids += (i == begin ? "" : ",") + tables.List()[i].id;
        ids += '}';
        const PostgresRows columns = mConnection.Query(kColumns, ids);
        for (std::size_t i = 0; i < columns.GetCount(); ++i)
            tables.AddColumn(columns.Get(i, 0), {.name = columns.Get(i, 1),
                                                 .isNotNull = columns.IsTrue(i, 2),
                                                 .description = columns.Get(i, 3)});
        const PostgresRows keys = mConnection.Query(kKeys, ids);
        for (std::size_t i = 0; i < keys.GetCount(); ++i)
            tables.AddKeyColumn(keys.Get(i, 0),
                                {.key = keys.Get(i, 1),
                                 .kind = keys.IsTrue(i, 2) ? EKeyKind::Primary : EKeyKind::Unique,
                                 .column = keys.Get(i, 3)});
        const PostgresRows foreignKeys = mConnection.Query(kForeignKeys, ids);
        for (std::size_t i = 0; i < foreignKeys.GetCount(); ++i)
            tables.AddForeignKeyColumn(
                foreignKeys.Get(i, 0),
                {.key = foreignKeys.Get(i, 1),
                 .table = {.schema = foreignKeys.Get(i, 2), .name = foreignKeys.Get(i, 3)},
                 .column = foreignKeys.Get(i, 4),
                 .referenced = foreignKeys.Get(i, 5)});
    }

    PostgresConnection mConnection;
};

} // namespace

std::unique_ptr<LiveServer> ConnectPostgres(const std::string& url, const ServerTimeLimits& limits)
{
    return std::make_unique<PostgresServer>(url, limits);
}

} // namespace qe::tool
