#ifndef TOOLKIT_IMPORT_LIVE_MARIADBCONNECTION_H
#define TOOLKIT_IMPORT_LIVE_MARIADBCONNECTION_H

#include "Toolkit/Import/Live/ServerUrl.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <memory>
#include <mysql.h>
#include <string>
#include <vector>

namespace qe::tool {

/// A connection to a MySQL or MariaDB server. What it throws are InputErrors of one line.
class MariaDbConnection
{
public:
    /// The values of a row as text; null is empty.
    using Row = std::vector<std::string>;

    /// Throws when the server cannot be reached in time or takes no connection. `place` stands
    /// before errors.
    MariaDbConnection(const ServerUrl& url, std::string place, const ServerTimeLimits& limits);

    /// Returns the version that the server says it has.
    [[nodiscard]] std::string GetVersion() const;

    /// Returns the text as a literal of SQL.
    [[nodiscard]] std::string Quote(const std::string& text) const;

    /// Returns the rows of a statement. Throws when the server refuses or does not answer in time.
    [[nodiscard]] std::vector<Row> Query(const std::string& statement);
    void Run(const std::string& statement) { static_cast<void>(Query(statement)); }

private:
    struct Close
    {
        void operator()(MYSQL* connection) const { mysql_close(connection); }
    };

    /// The limits are seconds; 0 stands for none.
    void SetOptions(unsigned connect, unsigned statement);
    [[noreturn]] void Fail() const;

    std::string mPlace;
    std::unique_ptr<MYSQL, Close> mConnection;
};

} // namespace qe::tool

#endif
