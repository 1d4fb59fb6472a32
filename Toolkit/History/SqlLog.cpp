#include "Toolkit/History/SqlLog.h"

#include "Toolkit/History/LargeStack.h"
#include "Toolkit/History/SqlJoins.h"
#include "Toolkit/History/StatementSplitter.h"
#include "Toolkit/Text/InputFile.h"

#include <nlohmann/json.hpp>
#include <pg_query.h>

#include <unordered_set>
#include <utility>

namespace qe::tool {

namespace {

/// Returns the statement as the parser's tree. Throws InputError when the parser refuses it.
nlohmann::json Parse(const std::string& text)
{
    struct Result
    {
        explicit Result(const std::string& statement) : value(pg_query_parse(statement.c_str())) {}
        Result(const Result&) = delete;
        Result& operator=(const Result&) = delete;
        ~Result() { pg_query_free_parse_result(value); }

        PgQueryParseResult value;
    };
    const Result result(text);
    if (result.value.error != nullptr)
        throw InputError({InputProblem{"", result.value.error->message}});
    nlohmann::json tree = nlohmann::json::parse(result.value.parse_tree, nullptr, false);
    if (tree.is_discarded() || tree["stmts"].size() != 1)
        throw InputError({InputProblem{"", "not one statement"}});
    return std::move(tree["stmts"][0]["stmt"]);
}

class LogReader
{
public:
    LogReader(const std::string& fileName, const SchemaColumns* columns)
        : mFileName(fileName), mColumns(columns)
    {}

    void Read(const SqlStatement& statement)
    {
        ++mFile.entries;
        const std::string place = mFileName + ':' + std::to_string(statement.line);
        // The same text counts once, so it is parsed once.
        if (!mTexts.insert(statement.text).second)
            return;
        try {
            if (statement.text.size() > kLongestStatement)
                throw InputError({InputProblem{"", "the statement is too long"}});
            Add(std::string(statement.text), place);
        } catch (const InputError& error) {
            mFile.AddUnread({place, error.GetProblems().front().text});
        }
    }

    [[nodiscard]] HistoryEntries Take() { return std::move(mFile); }

private:
    void Add(const std::string& text, const std::string& place)
    {
        std::size_t part = 0;
        for (JoinedTables& joined : FindSqlJoins(Parse(text), mColumns)) {
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
    LogReader reader(fileName, columns);
    RunOnLargeStack([&] {
        StatementSplitter statements(text);
        SqlStatement statement;
        while (statements.Next(statement))
            reader.Read(statement);
    });
    return reader.Take();
}

} // namespace qe::tool
