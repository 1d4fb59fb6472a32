#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Tests/Toolkit/SqlRows.h"
#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Import/SqlImport.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <set>

namespace {

using namespace qe::tool;
using qe::test::RunSql;
using qe::test::SqlRows;
namespace fs = std::filesystem;

const fs::path kFolder = fs::path(QEREFINER_SOURCE_DIR) / "Examples" / "retail";

/// The example's database, the model made for it, and its reports.
class Retail : public testing::Test
{
protected:
    void SetUp() override
    {
        RunSql(mDatabase, ReadInputFile(kFolder / "warehouse.sql"));
        RunSql(mDatabase, ReadInputFile(kFolder / "rows.sql"));
        std::ifstream requests(kFolder / "requests.jsonl");
        for (std::string line; std::getline(requests, line);) {
            const Json request = ParseJsonLine(line);
            mReports[request.at("id")] = ReadQuestion(request, {});
        }
    }

    /// Gives the report's own statement, as a person wrote it.
    static std::string StatementOf(const std::string& report)
    {
        return ReadInputFile(kFolder / "expected" / (report + ".sql"));
    }

    /// Gives the report's statement with the joins that the refiner finds in the model.
    std::string RefinedStatement(const std::string& report) const
    {
        const Answer answer = Ask(mModel, mReports.at(report));
        EXPECT_FALSE(answer.error) << answer.error->text;
        std::string statement = StatementOf(report);
        const std::size_t from = statement.find("\nFROM ") + 1;
        const std::size_t end = std::min(statement.find("WHERE "), statement.find("GROUP BY "));
        return statement.replace(from, end - from, WriteSql(mModel, answer, answer.path, {}));
    }

    SqliteDatabase mDatabase = SqliteDatabase::OpenMemory();
    ToolModel mModel = ReadModelFile(kFolder / "model.json");
    std::map<std::string, Question> mReports;
};

TEST_F(Retail, ReportsShowTheNumbersOfHandWrittenJoins)
{
    EXPECT_TRUE(RunSql(mDatabase, "PRAGMA foreign_key_check").empty());
    ASSERT_GE(mReports.size(), 12U);
    for (const auto& [report, question] : mReports) {
        const std::string refined = RefinedStatement(report);
        SCOPED_TRACE(report + "\n" + refined);
        const SqlRows expected = RunSql(mDatabase, StatementOf(report));
        EXPECT_GE(expected.size(), 3U);
        EXPECT_EQ(RunSql(mDatabase, refined), expected);
    }
}

/// The pairs of columns that joins set equal, shortcuts replaced by the tables that they stand for.
std::set<std::pair<std::string, std::string>> KeysOf(const qe::model::Model& model)
{
    std::set<std::pair<std::string, std::string>> keys;
    for (const amd_id& id : model.GetIds(IdClassRelationship)) {
        std::vector<std::string> columns;
        for (const auto& reference :
             qe::expression::FindReferences(model.Find(id)->text).references) {
            const auto name = [&](std::size_t i) { return reference.names.at(i).ToStdString(); };
            const auto subjects = model.FindByName(qe::model::EFamily::Subject, {name(0), name(1)});
            columns.push_back(model.Find(model.GetTarget(subjects.at(0)))->text + "." + name(2));
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
