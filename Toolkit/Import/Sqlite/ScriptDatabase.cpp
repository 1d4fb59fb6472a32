#include "Toolkit/Import/Sqlite/ScriptDatabase.h"

#include "Toolkit/Import/Sqlite/StatementStart.h"

#include <string_view>

namespace qe::tool {

namespace {

/// More make the search through the tables of a part dear, fewer the making of parts.
constexpr std::size_t kTablesInPart = 100;

} // namespace

ScriptDatabase::ScriptDatabase()
{
    mParts.push_back(SqliteDatabase::OpenMemory());
}

std::size_t ScriptDatabase::ExecuteFirst(const std::string& script, std::size_t offset)
{
    if (mIsMerged)
        return mParts.front().ExecuteFirst(script, offset);
    const StatementStart start = ReadStatementStart(std::string_view(script).substr(offset));
    const std::size_t end = ChoosePart(start).ExecuteFirst(script, offset);
    mSteps.push_back({&script, offset});
    return end;
}

SqliteDatabase& ScriptDatabase::ChoosePart(const StatementStart& start)
{
    switch (start.kind) {
    case EStatement::CreateTable:
        return ChoosePartOfTable(start);
    case EStatement::CreateIndex:
        return ChoosePartOfIndex(start);
    case EStatement::Session:
        return mParts.front();
    case EStatement::Other:
        break;
    }
    return Merge();
}

SqliteDatabase& ScriptDatabase::ChoosePartOfTable(const StatementStart& start)
{
    if (mPartOfName.count(start.name) != 0)
        return Merge();
    if (mParts.size() == 1 || mTablesInLast == kTablesInPart) {
        mParts.push_back(SqliteDatabase::OpenMemory());
        mTablesInLast = 0;
    }
    ++mTablesInLast;
    mPartOfName.emplace(start.name, mParts.size() - 1);
    return mParts.back();
}

SqliteDatabase& ScriptDatabase::ChoosePartOfIndex(const StatementStart& start)
{
    const auto table = mPartOfName.find(start.table);
    if (table == mPartOfName.end() || mPartOfName.count(start.name) != 0)
        return Merge();
    mPartOfName.emplace(start.name, table->second);
    return mParts[table->second];
}

SqliteDatabase& ScriptDatabase::Merge()
{
    SqliteDatabase merged = SqliteDatabase::OpenMemory();
    for (const Step& step : mSteps)
        merged.ExecuteFirst(*step.script, step.offset);
    mParts.clear();
    mParts.push_back(std::move(merged));
    mIsMerged = true;
    return mParts.front();
}

} // namespace qe::tool
