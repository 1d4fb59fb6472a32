#ifndef TOOLKIT_IMPORT_LIVE_ODBCCONNECTION_H
#define TOOLKIT_IMPORT_LIVE_ODBCCONNECTION_H

#include "Toolkit/Import/Schema/ServerOptions.h"

#include <functional>
#include <sql.h>
#include <sqlext.h>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A handle of ODBC, freed at the end.
template <SQLSMALLINT kind>
class OdbcHandle
{
public:
    explicit OdbcHandle(SQLHANDLE parent) { SQLAllocHandle(kind, parent, &mHandle); }
    OdbcHandle(const OdbcHandle&) = delete;
    OdbcHandle& operator=(const OdbcHandle&) = delete;
    ~OdbcHandle()
    {
        if (mHandle != SQL_NULL_HANDLE)
            SQLFreeHandle(kind, mHandle);
    }

    [[nodiscard]] SQLHANDLE Get() const { return mHandle; }

private:
    SQLHANDLE mHandle = SQL_NULL_HANDLE;
};

/// A text that ODBC's functions take; empty stands for whatever there is.
class OdbcArgument
{
public:
    explicit OdbcArgument(std::string_view text);

    [[nodiscard]] SQLWCHAR* Get() { return mUnits.empty() ? nullptr : mUnits.data(); }
    [[nodiscard]] SQLSMALLINT GetSize() const { return static_cast<SQLSMALLINT>(mUnits.size()); }

private:
    std::vector<SQLWCHAR> mUnits;
};

/// A connection through an ODBC driver. What it throws are InputErrors of one line.
class OdbcConnection
{
public:
    /// The values of a row as text; null is empty.
    using Row = std::vector<std::string>;
    /// Asks the driver for rows.
    using Question = std::function<SQLRETURN(SQLHSTMT statement)>;

    /// Throws when no connection comes about. `place` stands before errors.
    OdbcConnection(const std::string& attributes, std::string place,
                   const ServerTimeLimits& limits);
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;
    ~OdbcConnection();

    /// Returns what the driver tells of itself or the server; empty when it does not.
    [[nodiscard]] std::string GetInfo(SQLUSMALLINT what) const;

    /// Returns the rows that answer the question. Throws when the driver refuses.
    [[nodiscard]] std::vector<Row> Ask(const Question& question);

private:
    void Connect(const std::string& attributes, const ServerTimeLimits& limits);
    [[noreturn]] void Fail(SQLSMALLINT kind, SQLHANDLE handle) const;

    std::string mPlace;
    ServerTimeLimits mLimits;
    OdbcHandle<SQL_HANDLE_ENV> mEnvironment;
    OdbcHandle<SQL_HANDLE_DBC> mConnection;
};

} // namespace qe::tool

#endif
