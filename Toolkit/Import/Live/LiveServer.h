#ifndef TOOLKIT_IMPORT_LIVE_LIVESERVER_H
#define TOOLKIT_IMPORT_LIVE_LIVESERVER_H

#include "Toolkit/Import/Ddl/Declarations.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

class LiveTables;

/// A table as a server lists it.
struct LiveTable
{
    enum class EKind : std::uint8_t
    {
        Table,
        /// Its rows are read through another table.
        Partition,
        View,
        /// An extension of the server made it.
        OfExtension,
    };

    /// What the server knows it by; no other table has it.
    std::string id{};
    ObjectName name{};
    std::string description{};
    /// How many rows the server believes it has; nothing when it does not know.
    std::optional<std::uint64_t> rows{};
    EKind kind = EKind::Table;
    /// Whether the user may read its rows.
    bool isReadable = true;
};

/// What a database holds.
struct LiveListing
{
    /// The server and its version, such as "PostgreSQL 15.4".
    std::string server{};
    std::string database{};
    /// The schema whose name is not shown.
    std::string defaultSchema{};
    std::vector<LiveTable> tables{};
};

/// A connection that reads one state of a database and changes nothing. All its operations throw an
/// InputError of one line when the server refuses, fails, or does not answer in time.
class LiveServer
{
public:
    LiveServer() = default;
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;
    virtual ~LiveServer() = default;

    /// Returns the tables of which the patterns choose, but not the temporary ones and those of the
    /// server itself.
    [[nodiscard]] virtual LiveListing List(const TablePatterns& patterns) = 0;

    /// Gives the tables, which List returned before, their columns and keys.
    virtual void Describe(LiveTables& tables) = 0;
};

} // namespace qe::tool

#endif
