// What answers say of their risks, against statements that run on rows.

#include "Engine/Model/Model.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/PathRows.h"
#include "Tests/Toolkit/SqlRows.h"
#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Answers/SqlTables.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/InputFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <set>

namespace {

using namespace qe::tool;
using qe::test::PathRows;
using qe::test::RunSql;
namespace fs = std::filesystem;

using Ids = std::vector<amd_id>;

/// How often something was said of a subject, and how often rows proved it.
struct Tally
{
    int questions = 0;
    int unsuitable = 0;
    int silent = 0;
    int speaking = 0;
    int proven = 0;
    int turns = 0;

    void Print(const char* title) const
    {
        std::cout << title << ": " << questions << " questions (" << unsuitable
                  << " more without suitable rows), " << silent << " silent subjects, " << speaking
                  << " speaking, " << proven << " of these proven, " << turns << " turns\n";
    }
};

/// What rows show of one subject.
struct Shown
{
    bool isMultiplied = false;
    bool isDropped = false;
};

class RiskCheck
{
public:
    RiskCheck(const ToolModel& model, std::mt19937& random, Tally& tally)
        : mModel(model), mRandom(random), mTally(tally), mAsker(model)
    {}

    /// Asks for random subjects, and looks at the answer in one of several ways.
    void AskRandom()
    {
        const auto all = mModel.model->GetSubjects();
        Question question;
        for (std::size_t count = 2 + mRandom() % 3; count > 0; --count)
            question.subjects.push_back(ToText(all[mRandom() % all.size()]));
        question.operation = mRandom() % 4 == 0 ? EOperation::TreeJoins : EOperation::Path;
        const Answer answer = mAsker.Ask(question);
        const Ids& path = GetAnsweredPath(answer);
        if (answer.error || !answer.connected || path.empty())
            return;
        SCOPED_TRACE(testing::PrintToString(question.subjects));
        CheckTurns(question, answer);
        const PathTables tables(answer, path);
        const PathRows rows(mModel, tables);
        if (path.size() > 6 || !rows.IsPossible()) {
            ++mTally.unsuitable;
            return;
        }
        ++mTally.questions;
        CheckRows(answer, rows, tables, {});
        SqlOptions inner;
        inner.outerJoins = JoinOptions::EOuterJoins::Never;
        CheckRows(answer, rows, tables, inner);
        SqlOptions other;
        other.start = answer.terminals[mRandom() % answer.terminals.size()];
        CheckRows(answer, rows, tables, other);
    }

private:
    /// The options that turn the choice do so.
    void CheckTurns(const Question& question, const Answer& answer)
    {
        if (!answer.ambiguity || question.operation != EOperation::Path)
            return;
        EXPECT_GE(answer.ambiguity->equallyCheap, 2U);
        for (const Turn& turn : answer.ambiguity->turns) {
            ++mTally.turns;
            Question turned = question;
            turned.favouredJoins = turn.favoured;
            turned.requiredJoins = turn.required;
            const Answer other = mAsker.Ask(turned);
            const Ids& wanted = answer.alternatives[turn.alternative].joins;
            EXPECT_EQ(std::set<amd_id>(other.path.begin(), other.path.end()),
                      std::set<amd_id>(wanted.begin(), wanted.end()))
                << testing::PrintToString(turn.favoured);
        }
    }

    void CheckRows(const Answer& answer, const PathRows& rows, const PathTables& tables,
                   const SqlOptions& options)
    {
        const Ids& path = GetAnsweredPath(answer);
        const Risks risks = FindRisks(answer, path, options);
        const std::string from = WriteSql(mModel, answer, path, options);
        SCOPED_TRACE(from);
        std::vector<Shown> shown(tables.GetCount());
        // What is said may be proven by one draw, and denied by none.
        for (int draw = 0; draw < 2 || (draw < 100 && !IsProven(tables, risks, shown)); ++draw)
            RunDraw(rows, tables, from, risks, shown);
        for (std::size_t table = 0; table < tables.GetCount() && tables.IsAsked(table); ++table) {
            const Shown said = WhatIsSaid(risks, tables.GetSubjects(table).front());
            const bool isSilent = !said.isMultiplied && !said.isDropped;
            mTally.silent += isSilent ? 1 : 0;
            mTally.speaking += isSilent ? 0 : 1;
            mTally.proven += !isSilent && IsProven(said, shown[table]) ? 1 : 0;
            EXPECT_TRUE(IsProven(said, shown[table]))
                << answer.NameOf(tables.GetSubjects(table).front()) << ": "
                << (said.isMultiplied && !shown[table].isMultiplied ? "never multiplied" : "")
                << (said.isDropped && !shown[table].isDropped ? "never lost" : "");
        }
    }

    static bool IsProven(const Shown& said, const Shown& shown)
    {
        return (!said.isMultiplied || shown.isMultiplied) && (!said.isDropped || shown.isDropped);
    }

    static bool IsProven(const PathTables& tables, const Risks& risks,
                         const std::vector<Shown>& shown)
    {
        for (std::size_t table = 0; table < tables.GetCount() && tables.IsAsked(table); ++table) {
            if (!IsProven(WhatIsSaid(risks, tables.GetSubjects(table).front()), shown[table]))
                return false;
        }
        return true;
    }

    void RunDraw(const PathRows& rows, const PathTables& tables, const std::string& from,
                 const Risks& risks, std::vector<Shown>& shown)
    {
        const SqliteDatabase database = rows.Make(mRandom);
        const SqlTables names(mModel, tables);
        for (std::size_t table = 0; table < tables.GetCount() && tables.IsAsked(table); ++table) {
            const std::string measures = "SELECT count(t.qe_row), count(DISTINCT t.qe_row), "
                                         "coalesce(sum(t.qe_value), 0) FROM ";
            const std::string alias = names.Get(table).alias;
            std::string statement = measures;
            for (std::size_t at = 0; (at = statement.find("t.qe", at)) != std::string::npos;)
                statement.replace(at, 1, alias);
            statement.resize(statement.size() - 5);
            const auto got = RunSql(database, statement + from).at(0);
            const auto alone = RunSql(database, measures + names.Get(table).source + " t").at(0);
            shown[table].isMultiplied = shown[table].isMultiplied || got[0] != got[1];
            shown[table].isDropped = shown[table].isDropped || got[1] != alone[1];
            const Shown said = WhatIsSaid(risks, tables.GetSubjects(table).front());
            const bool isWhole = !said.isMultiplied && !said.isDropped;
            EXPECT_TRUE(said.isMultiplied || got[0] == got[1]) << alias;
            EXPECT_TRUE(said.isDropped || got[1] == alone[1]) << alias;
            EXPECT_TRUE(!isWhole || got == alone) << alias;
        }
    }

    static Shown WhatIsSaid(const Risks& risks, const amd_id& subject)
    {
        Shown said;
        for (const Multiplied& entry : risks.multiplied)
            said.isMultiplied = said.isMultiplied || std::count(entry.subjects.begin(),
                                                                entry.subjects.end(), subject) > 0;
        for (const Lost& entry : risks.lost)
            said.isDropped = said.isDropped || (entry.subject == subject && !entry.isKept);
        return said;
    }

    const ToolModel& mModel;
    std::mt19937& mRandom;
    Tally& mTally;
    Asker mAsker;
};

/// Returns tables that refer to earlier ones in every way that cardinalities tell.
std::string DrawModel(std::mt19937& random)
{
    constexpr const char* kEnds[] = {" >- ", " >o- ", " >-o ", " >o-o ", " >o- ", " >- ",
                                     " - ",  " o- ",  " o-o ", " -o ",   " >-< ", " >o-o< "};
    std::string joins;
    std::map<std::string, std::set<std::string>> columns;
    const auto tables = static_cast<int>(4 + random() % 5);
    for (int table = 1; table < tables; ++table) {
        for (auto count = 1 + random() % 2; count > 0; --count) {
            const std::string ends = kEnds[random() % std::size(kEnds)];
            const std::string from = "T" + std::to_string(table);
            const std::string to = "T" + std::to_string(random() % static_cast<unsigned>(table));
            const std::string name = from + "_" + std::to_string(count);
            const std::string key = ends.find('<') == std::string::npos ? "id" : "of" + name;
            columns[from].insert(name);
            columns[to].insert(key);
            joins += from + ends + to + " : " + name + " on [Model].[" + from + "].[" + name +
                     "] = [Model].[" + to + "].[" + key + "]\n";
        }
    }
    std::string text;
    for (const auto& [table, names] : columns) {
        std::string list;
        for (const std::string& name : names)
            list += (list.empty() ? "" : ", ") + name;
        text += table + '(' + list + ")\n";
    }
    return text + joins;
}

TEST(RiskProperties, RowsProveWhatIsSaidOfDrawnModels)
{
    std::mt19937 random(20);
    Tally tally;
    for (int model = 0; model < 150; ++model) {
        const std::string text = DrawModel(random);
        SCOPED_TRACE(text);
        const ToolModel drawn = qe::test::MakeModel(text);
        RiskCheck check(drawn, random, tally);
        for (int question = 0; question < 8 && !testing::Test::HasFailure(); ++question)
            check.AskRandom();
    }
    tally.Print("drawn models");
    EXPECT_GT(tally.questions, 600);
    EXPECT_GT(tally.silent, 500);
    EXPECT_GT(tally.speaking, 1000);
}

TEST(RiskProperties, RowsProveWhatIsSaidOfRealSchemas)
{
    const fs::path folder = fs::path(QEREFINER_DATA_DIR) / "schemas";
    if (!fs::exists(folder))
        GTEST_SKIP() << "no real schemas at hand: " << folder;
    std::set<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".sql")
            files.insert(entry.path());
    }
    std::mt19937 random(21);
    Tally tally;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file);
        const ToolModel model = ImportSql({file}, {});
        RiskCheck check(model, random, tally);
        const bool isSmall = file.parent_path() != folder;
        for (int question = 0; question < (isSmall ? 2 : 40) && !HasFailure(); ++question)
            check.AskRandom();
    }
    tally.Print("real schemas");
    EXPECT_GT(tally.questions, 300);
}

TEST(RiskProperties, SilentSubjectsOfTheExampleHaveTheSumsOfTheirTables)
{
    const fs::path folder = fs::path(QEREFINER_SOURCE_DIR) / "Examples" / "retail";
    const SqliteDatabase database = SqliteDatabase::OpenMemory();
    RunSql(database, ReadInputFile(folder / "warehouse.sql"));
    RunSql(database, ReadInputFile(folder / "rows.sql"));
    const ToolModel model = ReadModelFile(folder / "model.json");
    const auto subjects = model.model->GetSubjects();
    Asker asker(model);
    int silent = 0;
    for (const amd_id& first : subjects) {
        for (const amd_id& second : subjects) {
            if (first == second)
                continue;
            const Answer answer = asker.Ask(qe::test::Connect({ToText(first), ToText(second)}));
            const Risks risks = FindRisks(answer, answer.path, {});
            const bool isRepeated = std::any_of(
                risks.multiplied.begin(), risks.multiplied.end(), [&](const auto& entry) {
                    return std::count(entry.subjects.begin(), entry.subjects.end(), first) > 0;
                });
            if (isRepeated || !answer.connected)
                continue;
            ++silent;
            const PathTables tables(answer, answer.path);
            const SqlTables names(model, tables);
            const SqlTable& table = names.Get(tables.IndexOf(first));
            EXPECT_EQ(RunSql(database, "SELECT count(" + table.alias + ".rowid) " +
                                           WriteSql(model, answer, answer.path, {})),
                      RunSql(database, "SELECT count(*) FROM " + table.source))
                << answer.NameOf(first) << ", " << answer.NameOf(second);
        }
    }
    EXPECT_GT(silent, 50);
}

} // namespace
