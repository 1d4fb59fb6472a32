#ifndef TOOLKIT_IMPORT_SQLITE_SQLITEDATABASE_H
#define TOOLKIT_IMPORT_SQLITE_SQLITEDATABASE_H

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace qe::tool {

/// What SQLite reports of a statement or file.
class SqliteError : public std::runtime_error
{
public:
    /// Takes the byte of the statement that is wrong, -1 when the fault is nowhere in it, and
    /// SQLite's number of the fault.
    SqliteError(const std::string& text, int offset, int code)
        : std::runtime_error(text), mOffset(offset), mCode(code)
    {}

    [[nodiscard]] int GetOffset() const noexcept { return mOffset; }
    [[nodiscard]] int GetCode() const noexcept { return mCode; }

private:
    int mOffset;
    int mCode;
};

struct StatementFinalizer
{
    void operator()(sqlite3_stmt* statement) const;
};

using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

/// An open SQLite database. What runs in it can neither reach other files nor run on for ever:
/// statements that take too many steps end in an error.
class SqliteDatabase
{
public:
    /// Opens a file, only to read it. Where another program holds it, each use waits some seconds.
    /// Throws a SqliteError when that cannot be done.
    [[nodiscard]] static SqliteDatabase OpenFile(const std::filesystem::path& path);
    /// Opens a file that nothing changes meanwhile, which takes no files beside it.
    [[nodiscard]] static SqliteDatabase OpenUnchangingFile(const std::filesystem::path& path);
    /// Opens a copy of what a database file holds, only to read it.
    [[nodiscard]] static SqliteDatabase OpenBytes(std::string_view bytes);
    /// Returns an empty database in memory.
    [[nodiscard]] static SqliteDatabase OpenMemory();

    /// Runs the first statement that stands in `script` from `offset` on. Returns the offset behind
    /// it; the end of the script when there was none. Throws a SqliteError when the statement is
    /// wrong.
    std::size_t ExecuteFirst(const std::string& script, std::size_t offset);

    [[nodiscard]] sqlite3* GetHandle() const { return mHandle.get(); }

private:
    struct Closer
    {
        void operator()(sqlite3* handle) const;
    };

    SqliteDatabase(const std::string& name, int flags);

    std::unique_ptr<sqlite3, Closer> mHandle;
    std::unique_ptr<std::int64_t> mSteps;
};

/// The rows of a statement's result, one after the other.
class SqliteQuery
{
public:
    /// Throws a SqliteError when the statement is wrong.
    SqliteQuery(const SqliteDatabase& database, std::string_view statement);

    /// Sets the n-th parameter, counted from 1, to a text.
    SqliteQuery& Bind(int parameter, std::string_view text);
    /// Goes on to the next row; false when there is none.
    [[nodiscard]] bool Next();
    /// Returns a column of the row, counted from 0; the empty text for null.
    [[nodiscard]] std::string GetText(int column) const;
    [[nodiscard]] std::int64_t GetNumber(int column) const;
    [[nodiscard]] bool IsNull(int column) const;

private:
    sqlite3* mDatabase;
    /// What the parameters refer to; a list, whose elements stay where they are.
    std::list<std::string> mTexts;
    Statement mStatement;
};

} // namespace qe::tool

#endif
