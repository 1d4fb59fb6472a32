#ifndef TESTS_TOOLKIT_SQLROWS_H
#define TESTS_TOOLKIT_SQLROWS_H

#include "Toolkit/Import/Sqlite/SqliteDatabase.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace qe::test {

using SqlRows = std::vector<std::vector<std::string>>;

/// Runs a script and returns the rows that it shows, null as "(null)".
inline SqlRows RunSql(const tool::SqliteDatabase& database, const std::string& script)
{
    SqlRows rows;
    const auto addRow = [](void* list, int count, char** values, char**) {
        auto& row = static_cast<SqlRows*>(list)->emplace_back();
        for (int i = 0; i < count; ++i)
            row.emplace_back(values[i] == nullptr ? "(null)" : values[i]);
        return 0;
    };
    const int result = sqlite3_exec(database.GetHandle(), script.c_str(), addRow, &rows, nullptr);
    EXPECT_EQ(result, SQLITE_OK) << sqlite3_errmsg(database.GetHandle()) << " in\n" << script;
    return rows;
}

} // namespace qe::test

#endif
