#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Tests/Tools/ReportRequest.h"
#include "Tools/Ask/Asker.h"
#include "Tools/Import/SqlImport.h"
#include "Tools/Import/SqliteDatabase.h"
#include "Tools/Model/ModelFile.h"
#include "Tools/Output/SqlAnswer.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <sqlite3.h>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::ReportRequest;
namespace fs = std::filesystem;

using Row = std::vector<std::string>;

const fs::path kFolder = fs::path(QEREFINER_SOURCE_DIR) / "Examples" / "retail";

std::string ReadText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The example's database, the model made for it, and its reports.
class Retail : public testing::Test
{
protected:
    void SetUp() override
    {
        Run(ReadText(kFolder / "warehouse.sql"));
        Run(ReadText(kFolder / "rows.sql"));
    }

    std::vector<Row> Run(const std::string& sql)
    {
        std::vector<Row> rows;
        const auto addRow = [](void* list, int count, char** values, char**) {
            Row row;
            for (int i = 0; i < count; ++i)
                row.emplace_back(values[i] == nullptr ? "(null)" : values[i]);
            static_cast<std::vector<Row>*>(list)->push_back(std::move(row));
            return 0;
        };
        const int result = sqlite3_exec(mDatabase.GetHandle(), sql.c_str(), addRow, &rows, nullptr);
        EXPECT_EQ(result, SQLITE_OK) << sqlite3_errmsg(mDatabase.GetHandle()) << " in\n" << sql;
        return rows;
    }

    /// Gives the report's own statement, as a person wrote it.
    static std::string StatementOf(const ReportRequest& report)
    {
        return ReadText(kFolder / "expected" / (report.id + ".sql"));
    }

    /// Gives the report's statement with the joins that the refiner finds in the model.
    static std::string RefinedStatement(const ToolModel& model, const ReportRequest& report)
    {
        const Answer answer = Ask(model, report.question);
        EXPECT_FALSE(answer.error) << answer.error->text;
        std::string statement = StatementOf(report);
        const std::size_t from = statement.find("\nFROM ") + 1;
        const std::size_t end = std::min(statement.find("WHERE "), statement.find("GROUP BY "));
        return statement.replace(from, end - from, WriteSql(model, answer, answer.path, {}));
    }

    SqliteDatabase mDatabase = SqliteDatabase::OpenMemory();
    ToolModel mModel = ReadModelFile(kFolder / "model.json");
    std::vector<ReportRequest> mReports = qe::test::ReadRequests(kFolder / "requests.jsonl");
};

TEST_F(Retail, ReportsShowTheNumbersOfHandWrittenJoins)
{
    EXPECT_TRUE(Run("PRAGMA foreign_key_check").empty());
    ASSERT_GE(mReports.size(), 12U);
    for (const ReportRequest& report : mReports) {
        const std::string refined = RefinedStatement(mModel, report);
        SCOPED_TRACE(report.id + "\n" + refined);
        const std::vector<Row> expected = Run(StatementOf(report));
        EXPECT_GE(expected.size(), 3U);
        EXPECT_EQ(Run(refined), expected);
    }
}

/// Keys alone lead through the books: these reports need the roles that the model gives countries.
TEST_F(Retail, KeysAloneGoAstrayInAccounting)
{
    const ToolModel imported = ImportSql({kFolder / "warehouse.sql"}, {});
    for (const ReportRequest& report : mReports) {
        if (report.id != "sales-by-country" && report.id != "sales-by-category-and-country")
            continue;
        SCOPED_TRACE(report.id);
        EXPECT_NE(Run(RefinedStatement(imported, report)), Run(StatementOf(report)));
    }
}

/// The pairs of columns that joins set equal, shortcuts replaced by the tables that they stand for.
std::set<std::pair<std::string, std::string>> KeysOf(const qe::model::Model& model)
{
    std::set<std::pair<std::string, std::string>> keys;
    for (const amd_id& id : model.GetIds(IdClassRelationship)) {
        const auto references = qe::expression::FindReferences(model.Find(id)->text).references;
        std::vector<std::string> columns;
        for (const auto& reference : references) {
            std::vector<std::string> names;
            for (const I18NString& name : reference.names)
                names.push_back(name.ToStdString());
            const auto subjects =
                model.FindByName(qe::model::EFamily::Subject, {names.at(0), names.at(1)});
            const amd_id table = model.GetTarget(subjects.at(0));
            columns.push_back(model.Find(table)->text + "." + names.at(2));
        }
        for (std::size_t i = 0; i + 1 < columns.size(); i += 2)
            keys.emplace(columns[i], columns[i + 1]);
    }
    return keys;
}

std::map<std::string, std::vector<std::string>> TablesOf(const qe::model::Model& model)
{
    std::map<std::string, std::vector<std::string>> tables;
    for (const amd_id& subject : model.GetIds(IdClassQuerySubject)) {
        for (const amd_id& item : model.GetItems(subject))
            tables[model.Find(subject)->text].push_back(model.Find(item)->name);
    }
    return tables;
}

TEST_F(Retail, ModelHasEveryTableAndKeyOfTheDatabase)
{
    const ToolModel imported = ImportSql({kFolder / "warehouse.sql"}, {});
    EXPECT_TRUE(imported.notes.empty());
    EXPECT_EQ(TablesOf(*mModel.model), TablesOf(*imported.model));
    EXPECT_EQ(KeysOf(*mModel.model), KeysOf(*imported.model));
}

} // namespace
