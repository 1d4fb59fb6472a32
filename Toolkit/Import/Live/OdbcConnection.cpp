#include "Toolkit/Import/Live/OdbcConnection.h"

#include "Toolkit/Import/Live/ServerFailure.h"
#include "Toolkit/Text/Utf16.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qe::tool {

namespace {

/// ODBC takes numbers where it takes pointers.
SQLPOINTER ToPointer(std::uintptr_t number)
{
    return reinterpret_cast<SQLPOINTER>(number); // NOLINT(performance-no-int-to-ptr)
}

/// Returns an environment of ODBC 3, or an unusable one.
SQLHANDLE Prepare(SQLHANDLE environment)
{
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, ToPointer(SQL_OV_ODBC3), 0);
    return environment;
}

std::string ToText(const SQLWCHAR* units, std::size_t count)
{
    return FromUtf16(std::u16string(units, units + count));
}

/// Returns the value of the column as text, in as many pieces as it takes.
std::string ReadValue(SQLHSTMT statement, SQLUSMALLINT column)
{
    constexpr std::size_t kPiece = 1024;
    std::array<SQLWCHAR, kPiece> piece{};
    std::string text;
    for (;;) {
        SQLLEN bytes = 0;
        const SQLRETURN code = SQLGetData(statement, column, SQL_C_WCHAR, piece.data(),
                                          kPiece * sizeof(SQLWCHAR), &bytes);
        if (!SQL_SUCCEEDED(code) || bytes == SQL_NULL_DATA)
            return text;
        const bool isWhole = code == SQL_SUCCESS;
        text += ToText(piece.data(),
                       isWhole ? static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR) : kPiece - 1);
        if (isWhole)
            return text;
    }
}

} // namespace

OdbcArgument::OdbcArgument(std::string_view text)
{
    const std::u16string units = ToUtf16(text);
    mUnits.assign(units.begin(), units.end());
}

OdbcConnection::OdbcConnection(const std::string& attributes, std::string place,
                               const ServerTimeLimits& limits)
    : mPlace(std::move(place)),
      mLimits(limits),
      mEnvironment(SQL_NULL_HANDLE),
      mConnection(Prepare(mEnvironment.Get()))
{
    Connect(attributes, limits);
}

void OdbcConnection::Connect(const std::string& attributes, const ServerTimeLimits& limits)
{
    SQLHDBC const connection = mConnection.Get();
    if (connection == SQL_NULL_HANDLE)
        Fail(SQL_HANDLE_ENV, mEnvironment.Get());
    const auto seconds = static_cast<std::uintptr_t>(limits.connect.count());
    SQLSetConnectAttr(connection, SQL_ATTR_LOGIN_TIMEOUT, ToPointer(seconds), SQL_IS_UINTEGER);
    SQLSetConnectAttr(connection, SQL_ATTR_ACCESS_MODE, ToPointer(SQL_MODE_READ_ONLY),
                      SQL_IS_UINTEGER);
    OdbcArgument argument(attributes);
    if (!SQL_SUCCEEDED(SQLDriverConnectW(connection, nullptr, argument.Get(), argument.GetSize(),
                                         nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        Fail(SQL_HANDLE_DBC, connection);
    // Drivers that cannot do so read each answer on its own.
    SQLSetConnectAttr(connection, SQL_ATTR_TXN_ISOLATION, ToPointer(SQL_TXN_REPEATABLE_READ),
                      SQL_IS_UINTEGER);
    SQLSetConnectAttr(connection, SQL_ATTR_AUTOCOMMIT, ToPointer(SQL_AUTOCOMMIT_OFF),
                      SQL_IS_UINTEGER);
}

OdbcConnection::~OdbcConnection()
{
    SQLEndTran(SQL_HANDLE_DBC, mConnection.Get(), SQL_ROLLBACK);
    SQLDisconnect(mConnection.Get());
}

std::string OdbcConnection::GetInfo(SQLUSMALLINT what) const
{
    constexpr std::size_t kLongest = 1024;
    std::array<SQLWCHAR, kLongest> text{};
    SQLSMALLINT bytes = 0;
    const SQLRETURN code = SQLGetInfoW(mConnection.Get(), what, text.data(),
                                       static_cast<SQLSMALLINT>(sizeof(text)), &bytes);
    if (code != SQL_SUCCESS || bytes < 0 || static_cast<std::size_t>(bytes) >= sizeof(text))
        return {};
    return ToText(text.data(), static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR));
}

std::vector<OdbcConnection::Row> OdbcConnection::Ask(const Question& question)
{
    const OdbcHandle<SQL_HANDLE_STMT> handle(mConnection.Get());
    SQLHSTMT const statement = handle.Get();
    if (statement == SQL_NULL_HANDLE)
        Fail(SQL_HANDLE_DBC, mConnection.Get());
    SQLSetStmtAttr(statement, SQL_ATTR_QUERY_TIMEOUT,
                   ToPointer(static_cast<std::uintptr_t>(mLimits.statement.count())),
                   SQL_IS_UINTEGER);
    SQLSMALLINT columns = 0;
    if (!SQL_SUCCEEDED(question(statement)) ||
        !SQL_SUCCEEDED(SQLNumResultCols(statement, &columns)))
        Fail(SQL_HANDLE_STMT, statement);
    std::vector<Row> rows;
    SQLRETURN code = SQLFetch(statement);
    for (; SQL_SUCCEEDED(code); code = SQLFetch(statement)) {
        Row& row = rows.emplace_back();
        for (SQLSMALLINT column = 1; column <= columns; ++column)
            row.push_back(ReadValue(statement, static_cast<SQLUSMALLINT>(column)));
    }
    if (code != SQL_NO_DATA)
        Fail(SQL_HANDLE_STMT, statement);
    return rows;
}

void OdbcConnection::Fail(SQLSMALLINT kind, SQLHANDLE handle) const
{
    std::array<SQLWCHAR, SQL_MAX_MESSAGE_LENGTH> text{};
    std::array<SQLWCHAR, SQL_SQLSTATE_SIZE + 1> state{};
    SQLINTEGER number = 0;
    SQLSMALLINT units = 0;
    const SQLRETURN code = SQLGetDiagRecW(kind, handle, 1, state.data(), &number, text.data(),
                                          static_cast<SQLSMALLINT>(text.size()), &units);
    const auto size = static_cast<std::size_t>(units < 0 ? 0 : units);
    ThrowServerFailure(mPlace, SQL_SUCCEEDED(code)
                                   ? ToText(text.data(), std::min(size, text.size() - 1))
                                   : "the driver does not say why");
}

} // namespace qe::tool
