#ifndef TOOLKIT_IMPORT_LIVE_POSTGRESCONNECTION_H
#define TOOLKIT_IMPORT_LIVE_POSTGRESCONNECTION_H

#include "Toolkit/Import/Live/ServerUrl.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <chrono>
#include <cstddef>
#include <libpq-fe.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qe::tool {

/// The rows that a statement gave.
class PostgresRows
{
public:
    explicit PostgresRows(PGresult* result) : mResult(result) {}

    [[nodiscard]] std::size_t GetCount() const
    {
        return static_cast<std::size_t>(PQntuples(mResult.get()));
    }
    /// Returns the value as text; empty for null.
    [[nodiscard]] std::string Get(std::size_t row, int column) const;
    [[nodiscard]] bool IsTrue(std::size_t row, int column) const { return Get(row, column) == "t"; }

private:
    struct Clear
    {
        void operator()(PGresult* result) const { PQclear(result); }
    };

    std::unique_ptr<PGresult, Clear> mResult;
};

/// A connection to a PostgreSQL server. What it throws are InputErrors of one line.
class PostgresConnection
{
public:
    /// Throws when the server cannot be reached in time or takes no connection. `place` stands
    /// before errors.
    PostgresConnection(const ServerUrl& url, std::string place, const ServerTimeLimits& limits);

    /// Returns the rows of a statement, whose "$1" is the parameter. Throws when the server refuses
    /// or does not answer in time.
    [[nodiscard]] PostgresRows Query(const char* statement,
                                     const std::optional<std::string>& parameter = std::nullopt);
    void Run(const char* statement) { static_cast<void>(Query(statement)); }

private:
    struct Finish
    {
        void operator()(PGconn* connection) const { PQfinish(connection); }
    };

    /// Waits until the answer is there.
    void AwaitAnswer();
    [[noreturn]] void Fail(std::string_view text) const;

    std::string mPlace;
    std::chrono::seconds mLimit;
    std::unique_ptr<PGconn, Finish> mConnection;
};

} // namespace qe::tool

#endif
