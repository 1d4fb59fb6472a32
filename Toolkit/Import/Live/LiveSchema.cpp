#include "Toolkit/Import/Live/LiveSchema.h"

#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Live/LiveTables.h"
#include "Toolkit/Import/Live/NamePatterns.h"
#include "Toolkit/Import/Live/ServerKinds.h"
#include "Toolkit/Sql/SqlDialect.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

std::size_t Count(const std::vector<LiveTable>& tables, LiveTable::EKind kind)
{
    return static_cast<std::size_t>(
        std::count_if(tables.begin(), tables.end(),
                      [kind](const LiveTable& table) { return table.kind == kind; }));
}

/// Leaves the tables, and notes what else was chosen.
void RemoveOthers(std::vector<LiveTable>& tables, ReadingNotes& notes,
                  std::vector<std::string>& told)
{
    using enum LiveTable::EKind;
    for (std::size_t i = Count(tables, Partition); i > 0; --i)
        notes.CountPartition();
    if (const std::size_t views = Count(tables, View); views > 0)
        told.push_back("views left out, which have no keys: " + std::to_string(views));
    if (const std::size_t others = Count(tables, OfExtension); others > 0)
        told.push_back("tables left out that extensions of the server made: " +
                       std::to_string(others));
    std::erase_if(tables, [](const LiveTable& table) { return table.kind != Table; });
    const auto unreadable = std::count_if(tables.begin(), tables.end(),
                                          [](const LiveTable& table) { return !table.isReadable; });
    if (unreadable > 0)
        told.push_back("tables whose rows this user may not read: " + std::to_string(unreadable));
}

/// Returns the dialect of a server, which tells what it is, such as "Microsoft SQL Server 16"; null
/// for one that SQL is not written for.
const SqlDialect* DialectOf(std::string_view kind, std::string_view server)
{
    if (const SqlDialect* const dialect = FindSqlDialect(kind))
        return dialect;
    const std::span<const SqlDialect> dialects = GetSqlDialects();
    const auto found =
        std::find_if(dialects.begin(), dialects.end(), [server](const SqlDialect& dialect) {
            return server.find(dialect.name) != std::string_view::npos;
        });
    return found == dialects.end() ? nullptr : &*found;
}

std::unique_ptr<LiveServer> Connect(const std::string& url, const ServerTimeLimits& limits)
{
    const ServerKind& kind = *FindServerKind(url);
    if (kind.connect == nullptr)
        throw InputError({{kind.toShown(url), "cannot be read: this build of qerefine is without " +
                                                  std::string(kind.library)}});
    return kind.connect(url, limits);
}

} // namespace

bool IsServerUrl(std::string_view text)
{
    return FindServerKind(text) != nullptr;
}

std::string ToShownModelName(std::string_view text)
{
    const ServerKind* const kind = FindServerKind(text);
    return kind == nullptr ? std::string(text) : kind->toShown(text);
}

DatabaseSchema ReadServer(const std::string& url, const ServerOptions& options,
                          const ProgressObserver& observer)
{
    const std::unique_ptr<LiveServer> server = Connect(url, options.limits);
    LiveListing listing = server->List(options.patterns);
    SelectTables(listing, options.patterns);
    ReadingNotes notes;
    std::vector<std::string> told;
    RemoveOthers(listing.tables, notes, told);
    LiveTables tables(std::move(listing.tables), observer);
    server->Describe(tables);
    DatabaseSchema schema = tables.Finish(listing.defaultSchema, notes);
    schema.name = listing.database;
    schema.notes.insert(schema.notes.end(), told.begin(), told.end());
    schema.origin = listing.server;
    schema.dialect = DialectOf(FindServerKind(url)->word, listing.server);
    return schema;
}

} // namespace qe::tool
