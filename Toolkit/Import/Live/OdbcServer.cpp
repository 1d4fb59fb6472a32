#include "Toolkit/Import/Live/OdbcServer.h"

#include "Toolkit/Import/Live/LiveTables.h"
#include "Toolkit/Import/Live/OdbcConnection.h"
#include "Toolkit/Import/Live/OdbcText.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <utility>

namespace qe::tool {

namespace {

using Row = OdbcConnection::Row;
using Rows = std::vector<Row>;

constexpr const char* kPasswordVariable = "QEREFINER_ODBC_PASSWORD";

/// Returns the value of a column by its number, which counts from 1 as ODBC does; empty where the
/// driver has fewer.
std::string At(const Row& row, std::size_t column)
{
    return column <= row.size() ? row[column - 1] : std::string();
}

int NumberAt(const Row& row, std::size_t column)
{
    const std::string text = At(row, column);
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Drivers put their rows into an order of their own.
void SortBy(Rows& rows, std::size_t column)
{
    std::stable_sort(rows.begin(), rows.end(), [column](const Row& left, const Row& right) {
        return NumberAt(left, column) < NumberAt(right, column);
    });
}

/// Returns the attributes with the password of the environment.
std::string MakeConnectionText(const std::string& url)
{
    std::string text;
    for (const auto& [name, value] : ParseOdbcUrl(url))
        text.append(name).append("=").append(value).append(";");
    const char* const password = std::getenv(kPasswordVariable);
    if (password == nullptr)
        return text;
    text += "PWD={";
    for (const char* letter = password; *letter != '\0'; ++letter)
        text.append(*letter == '}' ? 2 : 1, *letter);
    return text + "};";
}

/// What a table lies in; drivers of servers without schemas have catalogues instead.
struct OdbcName
{
    std::string catalogue{};
    std::string schema{};
    std::string table{};

    [[nodiscard]] ObjectName Get() const
    {
        return {.schema = schema.empty() ? catalogue : schema, .name = table};
    }
};

OdbcName NameAt(const Row& row, std::size_t first)
{
    return {.catalogue = At(row, first), .schema = At(row, first + 1), .table = At(row, first + 2)};
}

bool IsSame(const OdbcName& left, const OdbcName& right)
{
    return left.table == right.table && left.schema == right.schema;
}

/// The numbers of columns in what ODBC answers.
namespace tables {
constexpr std::size_t kType = 4;
constexpr std::size_t kRemarks = 5;
} // namespace tables
namespace columns {
constexpr std::size_t kName = 4;
constexpr std::size_t kNullable = 11;
constexpr std::size_t kRemarks = 12;
constexpr std::size_t kPosition = 17;
} // namespace columns
namespace primary {
constexpr std::size_t kName = 4;
constexpr std::size_t kPosition = 5;
} // namespace primary
namespace indexes {
constexpr std::size_t kNonUnique = 4;
constexpr std::size_t kName = 6;
constexpr std::size_t kPosition = 8;
constexpr std::size_t kColumn = 9;
constexpr std::size_t kFilter = 13;
} // namespace indexes
namespace foreign {
constexpr std::size_t kReferenced = 4;
constexpr std::size_t kReferring = 5;
constexpr std::size_t kColumn = 8;
constexpr std::size_t kPosition = 9;
constexpr std::size_t kName = 12;
} // namespace foreign

class OdbcServer : public LiveServer
{
public:
    OdbcServer(const std::string& url, const ServerTimeLimits& limits)
        : mConnection(MakeConnectionText(url), ToShownOdbcUrl(url), limits)
    {}

    LiveListing List(const TablePatterns& /*patterns*/) override
    {
        LiveListing listing{
            .server = mConnection.GetInfo(SQL_DBMS_NAME) + ' ' + mConnection.GetInfo(SQL_DBMS_VER),
            // Where a database is a file, its name is a path.
            .database =
                std::filesystem::path(mConnection.GetInfo(SQL_DATABASE_NAME)).stem().string()};
        OdbcArgument types("TABLE,VIEW");
        const Rows rows = mConnection.Ask([&](SQLHSTMT statement) {
            return SQLTablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, types.Get(),
                              types.GetSize());
        });
        for (const Row& row : rows)
            AddTable(row, listing);
        listing.defaultSchema = FindDefaultSchema(listing.tables);
        return listing;
    }

    void Describe(LiveTables& tables) override
    {
        for (std::size_t i = 0; i < tables.List().size(); ++i) {
            const std::string& id = tables.List()[i].id;
            const OdbcName& name = mNames.at(id);
            AddColumns(name, id, tables);
            AddKeys(name, id, tables);
            AddForeignKeys(name, id, tables);
            tables.ShowProgress(i + 1);
        }
    }

private:
    void AddTable(const Row& row, LiveListing& listing)
    {
        const OdbcName name = NameAt(row, 1);
        const std::string id = std::to_string(mNames.size());
        mNames.emplace(id, name);
        listing.tables.push_back({.id = id,
                                  .name = name.Get(),
                                  .description = At(row, tables::kRemarks),
                                  .kind = At(row, tables::kType) == "VIEW"
                                              ? LiveTable::EKind::View
                                              : LiveTable::EKind::Table});
    }

    /// Drivers do not tell it: it is the usual one of some server, else the only one.
    static std::string FindDefaultSchema(const std::vector<LiveTable>& tables)
    {
        const auto has = [&tables](const std::string& schema) {
            return std::any_of(tables.begin(), tables.end(),
                               [&](const LiveTable& table) { return table.name.schema == schema; });
        };
        for (const char* const usual : {"public", "dbo"})
            if (has(usual))
                return usual;
        return tables.empty() ? "" : tables.front().name.schema;
    }

    /// Asks one of the functions that take the name of a table.
    template <typename Function, typename... More>
    Rows AskOf(const OdbcName& name, Function function, More... more)
    {
        OdbcArgument catalogue(name.catalogue);
        OdbcArgument schema(name.schema);
        OdbcArgument table(name.table);
        return mConnection.Ask([&](SQLHSTMT statement) {
            return function(statement, catalogue.Get(), catalogue.GetSize(), schema.Get(),
                            schema.GetSize(), table.Get(), table.GetSize(), more...);
        });
    }

    void AddColumns(const OdbcName& name, const std::string& id, LiveTables& read)
    {
        Rows rows = AskOf(name, SQLColumnsW, nullptr, SQLSMALLINT{0});
        // Drivers take the name for a pattern, which others may match.
        std::erase_if(rows, [&](const Row& row) { return !IsSame(NameAt(row, 1), name); });
        SortBy(rows, columns::kPosition);
        for (const Row& row : rows)
            read.AddColumn(
                id, {.name = At(row, columns::kName),
                     .isNotNull = At(row, columns::kNullable) == std::to_string(SQL_NO_NULLS),
                     .description = At(row, columns::kRemarks)});
    }

    void AddKeys(const OdbcName& name, const std::string& id, LiveTables& read)
    {
        Rows keys = AskOf(name, SQLPrimaryKeysW);
        SortBy(keys, primary::kPosition);
        for (const Row& row : keys)
            read.AddKeyColumn(id, {.kind = EKeyKind::Primary, .column = At(row, primary::kName)});
        Rows parts =
            AskOf(name, SQLStatisticsW, SQLUSMALLINT{SQL_INDEX_UNIQUE}, SQLUSMALLINT{SQL_QUICK});
        SortBy(parts, indexes::kPosition);
        for (const Row& row : parts) {
            // Rows without the name of an index tell of the whole table.
            if (At(row, indexes::kName).empty() || NumberAt(row, indexes::kNonUnique) != 0)
                continue;
            const bool isPartial = !At(row, indexes::kFilter).empty();
            read.AddKeyColumn(id, {.key = At(row, indexes::kName),
                                   .column = isPartial ? "" : At(row, indexes::kColumn)});
        }
    }

    void AddForeignKeys(const OdbcName& name, const std::string& id, LiveTables& read)
    {
        OdbcArgument catalogue(name.catalogue);
        OdbcArgument schema(name.schema);
        OdbcArgument table(name.table);
        Rows rows = mConnection.Ask([&](SQLHSTMT statement) {
            return SQLForeignKeysW(statement, nullptr, 0, nullptr, 0, nullptr, 0, catalogue.Get(),
                                   catalogue.GetSize(), schema.Get(), schema.GetSize(), table.Get(),
                                   table.GetSize());
        });
        std::erase_if(
            rows, [&](const Row& row) { return !IsSame(NameAt(row, foreign::kReferring), name); });
        SortBy(rows, foreign::kPosition);
        // Keys need not have names; then the first columns tell how many there are.
        std::map<std::pair<std::string, int>, int> counts;
        for (const Row& row : rows) {
            const OdbcName target = NameAt(row, 1);
            const int position = NumberAt(row, foreign::kPosition);
            std::string key = At(row, foreign::kName);
            if (key.empty())
                key = target.table + '\0' + std::to_string(counts[{target.table, position}]++);
            read.AddForeignKeyColumn(id, {.key = key,
                                          .table = target.Get(),
                                          .column = At(row, foreign::kColumn),
                                          .referenced = At(row, foreign::kReferenced)});
        }
    }

    OdbcConnection mConnection;
    /// By the ids of the tables.
    std::map<std::string, OdbcName> mNames;
};

} // namespace

std::unique_ptr<LiveServer> ConnectOdbc(const std::string& url, const ServerTimeLimits& limits)
{
    return std::make_unique<OdbcServer>(url, limits);
}

} // namespace qe::tool
