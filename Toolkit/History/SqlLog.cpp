#include "Toolkit/History/SqlLog.h"

#include "Toolkit/History/SqlJoins.h"
#include "Toolkit/Import/Ddl/StatementReader.h"
#include "Toolkit/Import/PostgreSql/PostgresParser.h"
#include "Toolkit/Text/InputFile.h"

#include <nlohmann/json.hpp>

#include <unordered_set>
#include <utility>

namespace qe::tool {

namespace {

class LogReader
{
public:
    LogReader(const std::string& fileName, const SchemaColumns* columns)
        : mFileName(fileName), mColumns(columns)
    {}

    void Read(const ScriptStatement& statement)
    {
        ++mFile.entries;
        // The same text counts once, so it is parsed once.
        if (!mTexts.insert(statement.text).second)
            return;
        try {
            if (statement.text.size() > kLongestStatement)
                throw PostgresSyntaxError("the statement is too long", 0);
            Add(std::string(statement.text), PlaceOf(statement.line));
        } catch (const InputError& error) {
            AddUnread(statement.line, error.GetProblems().front().text);
        } catch (const PostgresSyntaxError& error) {
            AddUnread(statement.line + error.GetLine(), error.what());
        }
    }

    /// Takes the line on which something begins that hides the rest of the file.
    void AddUnended(std::size_t line)
    {
        ++mFile.entries;
        AddUnread(line, kUnended);
    }

    [[nodiscard]] HistoryEntries Take() { return std::move(mFile); }

private:
    void AddUnread(std::size_t line, const std::string& text)
    {
        mFile.AddUnread({PlaceOf(line), text});
    }

    [[nodiscard]] std::string PlaceOf(std::size_t line) const
    {
        return mFileName + ':' + std::to_string(line);
    }

    void Add(const std::string& text, const std::string& place)
    {
        std::size_t part = 0;
        for (JoinedTables& joined : FindSqlJoins(ParsePostgres(text), mColumns)) {
            // A query over one table tells nothing of joins.
            if (joined.tables.size() < 2)
                continue;
            PastQuery query{.place = place,
                            .tables = std::move(joined.tables),
                            .pairs = std::move(joined.pairs),
                            .text = text + (part == 0 ? "" : ';' + std::to_string(part))};
            ++part;
            Normalise(query);
            mFile.queries.push_back(std::move(query));
        }
    }

    const std::string& mFileName;
    const SchemaColumns* mColumns;
    std::unordered_set<std::string_view> mTexts;
    HistoryEntries mFile;
};

} // namespace

HistoryEntries ReadSqlLog(std::string_view text, const std::string& fileName,
                          const SchemaColumns* columns)
{
    LogReader log(fileName, columns);
    StatementReader statements(text, EDialect::PostgreSql);
    ScriptStatement statement;
    while (statements.Read(statement)) {
        if (statements.GetUnendedLine() != 0)
            log.AddUnended(statements.GetUnendedLine());
        else
            log.Read(statement);
    }
    return log.Take();
}

} // namespace qe::tool
