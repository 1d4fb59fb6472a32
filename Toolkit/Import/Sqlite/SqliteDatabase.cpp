#include "Toolkit/Import/Sqlite/SqliteDatabase.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <sqlite3.h>

namespace qe::tool {

namespace {

constexpr int kStepsBetweenChecks = 1'000'000;
constexpr std::int64_t kMostChecks = 200;

int CountSteps(void* checks)
{
    return ++*static_cast<std::int64_t*>(checks) > kMostChecks ? 1 : 0;
}

constexpr int kMostSecondsLocked = 5;

[[noreturn]] void Fail(sqlite3* database)
{
    const int code = sqlite3_errcode(database);
    if (code == SQLITE_NOMEM)
        throw std::bad_alloc();
    std::string text = sqlite3_errmsg(database);
    if (code == SQLITE_INTERRUPT)
        text = "the statement takes too long";
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED)
        text = "another program has locked it for more than " + std::to_string(kMostSecondsLocked) +
               " seconds; try again when it is done";
    throw SqliteError(text, sqlite3_error_offset(database), code);
}

/// Returns the path as the part of a URI.
std::string EscapeForUri(const std::string& path)
{
    std::string escaped;
    for (const char letter : path) {
        constexpr std::string_view kSpecial = "%?#";
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(letter);
        if (kSpecial.find(letter) == std::string_view::npos)
            escaped += letter;
        else
            escaped += {'%', kDigits[byte / 16U], kDigits[byte % 16U]};
    }
    return escaped;
}

} // namespace

void StatementFinalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void SqliteDatabase::Closer::operator()(sqlite3* handle) const
{
    sqlite3_close_v2(handle);
}

SqliteDatabase::SqliteDatabase(const std::string& name, int flags)
    : mSteps(std::make_unique<std::int64_t>(0))
{
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &handle, flags, nullptr);
    mHandle.reset(handle);
    if (handle == nullptr)
        throw std::bad_alloc();
    if (result != SQLITE_OK)
        Fail(handle);
    sqlite3_busy_timeout(handle, 1000 * kMostSecondsLocked);
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(handle, kStepsBetweenChecks, CountSteps, mSteps.get());
}

SqliteDatabase SqliteDatabase::OpenFile(const std::filesystem::path& path)
{
    return SqliteDatabase(path.string(), SQLITE_OPEN_READONLY);
}

SqliteDatabase SqliteDatabase::OpenUnchangingFile(const std::filesystem::path& path)
{
    const std::string absolute = std::filesystem::absolute(path).string();
    return SqliteDatabase("file:" + EscapeForUri(absolute) + "?immutable=1",
                          SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

SqliteDatabase SqliteDatabase::OpenMemory()
{
    return SqliteDatabase(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

SqliteDatabase SqliteDatabase::OpenBytes(std::string_view bytes)
{
    SqliteDatabase database = OpenMemory();
    auto* const copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size()));
    if (copy == nullptr)
        throw std::bad_alloc();
    std::copy(bytes.begin(), bytes.end(), copy);
    // In WAL mode, which these bytes of the header tell, it would look for files beside it.
    constexpr std::size_t kWriteVersion = 18;
    constexpr std::size_t kReadVersion = 19;
    if (bytes.size() > kReadVersion)
        copy[kWriteVersion] = copy[kReadVersion] = 1;
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    constexpr unsigned kFlags = SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY;
    if (sqlite3_deserialize(database.GetHandle(), "main", copy, size, size, kFlags) != SQLITE_OK)
        Fail(database.GetHandle());
    return database;
}

std::size_t SqliteDatabase::ExecuteFirst(const std::string& script, std::size_t offset)
{
    sqlite3_stmt* prepared = nullptr;
    const char* rest = nullptr;
    // Of a text with a given length SQLite would copy all that follows the statement.
    if (sqlite3_prepare_v2(mHandle.get(), script.c_str() + offset, -1, &prepared, &rest) !=
        SQLITE_OK)
        Fail(mHandle.get());
    const Statement statement(prepared);
    int result = statement == nullptr ? SQLITE_DONE : SQLITE_ROW;
    while (result == SQLITE_ROW)
        result = sqlite3_step(prepared);
    if (result != SQLITE_DONE)
        Fail(mHandle.get());
    return static_cast<std::size_t>(rest - script.c_str());
}

SqliteQuery::SqliteQuery(const SqliteDatabase& database, std::string_view statement)
    : mDatabase(database.GetHandle())
{
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(mDatabase, statement.data(), static_cast<int>(statement.size()),
                           &prepared, nullptr) != SQLITE_OK)
        Fail(mDatabase);
    mStatement.reset(prepared);
}

SqliteQuery& SqliteQuery::Bind(int parameter, std::string_view text)
{
    const std::string& kept = mTexts.emplace_back(text);
    if (sqlite3_bind_text(mStatement.get(), parameter, kept.data(), static_cast<int>(kept.size()),
                          SQLITE_STATIC) != SQLITE_OK)
        Fail(mDatabase);
    return *this;
}

bool SqliteQuery::Next()
{
    const int result = sqlite3_step(mStatement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        Fail(mDatabase);
    return result == SQLITE_ROW;
}

std::string SqliteQuery::GetText(int column) const
{
    const unsigned char* const text = sqlite3_column_text(mStatement.get(), column);
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(mStatement.get(), column));
    return text == nullptr ? std::string() : std::string(text, text + length);
}

std::int64_t SqliteQuery::GetNumber(int column) const
{
    return sqlite3_column_int64(mStatement.get(), column);
}

bool SqliteQuery::IsNull(int column) const
{
    return sqlite3_column_type(mStatement.get(), column) == SQLITE_NULL;
}

} // namespace qe::tool
