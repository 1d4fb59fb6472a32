#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SqlRows.h"
#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/PassedTables.h"
#include "Toolkit/Ask/PathKeys.h"
#include "Toolkit/Ask/PathSieve.h"
#include "Toolkit/History/HistoryChoice.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::NamesOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(PathSieve, KeepsTheLeastAndNamesWhatDecided)
{
    const std::array<std::int64_t, 4> first{2, 1, 1, 1};
    const std::array<std::int64_t, 4> second{0, 5, 4, 4};
    PathSieve sieve(4);
    EXPECT_EQ(sieve.Take().decidedBy, "");
    sieve.KeepLeast("first", [&](std::size_t position) { return first[position]; });
    EXPECT_EQ(sieve.Take().position, 1U);
    EXPECT_EQ(sieve.Take().decidedBy, "first");
    sieve.KeepLeast("second", [&](std::size_t position) { return second[position]; });
    sieve.KeepLeast("third", [](std::size_t) { return -3; });
    EXPECT_THAT(sieve.GetLeft(), ElementsAre(2, 3));
    EXPECT_EQ(sieve.Take().decidedBy, "second");
    sieve.KeepLeast("last", [](std::size_t position) { return position == 3 ? 0 : 1; });
    sieve.KeepLeast("never", [](std::size_t) -> std::int64_t { throw std::logic_error("asked"); });
    EXPECT_EQ(sieve.Take().position, 3U);
    EXPECT_EQ(PathSieve(0).Take().position, 0U);
}

/// Makes an answer of joins between numbered subjects.
class PathMaker
{
public:
    void Join(std::int32_t left, bool isLeftMany, std::int32_t right, bool isRightMany)
    {
        AnswerJoin join;
        join.id = {0, 102, static_cast<std::int32_t>(mPath.size()) + 1};
        join.left = {0, 101, left};
        join.right = {0, 101, right};
        join.leftCardinality.maximum = ToMaximum(isLeftMany);
        join.rightCardinality.maximum = ToMaximum(isRightMany);
        mAnswer.joinsById.emplace(join.id, join);
        mPath.push_back(join.id);
    }

    [[nodiscard]] std::int64_t Count() const { return CountWalksToMany(mAnswer, mPath); }

    /// Tries each subject as the beginning.
    [[nodiscard]] std::int64_t CountByTrying(std::int32_t subjects) const
    {
        std::int64_t least = subjects;
        for (std::int32_t start = 1; start <= subjects; ++start)
            least = std::min(least, CountFrom({0, 101, start}, {}));
        return least;
    }

private:
    [[nodiscard]] static std::int32_t ToMaximum(bool isMany)
    {
        return isMany ? BMT_I_Association::CardinalityMany : BMT_I_Association::CardinalityOne;
    }

    [[nodiscard]] std::int64_t CountFrom(const amd_id& subject, const amd_id& by) const
    {
        std::int64_t count = 0;
        for (const amd_id& id : mPath) {
            const AnswerJoin& join = *mAnswer.FindJoin(id);
            if (id == by || (join.left != subject && join.right != subject))
                continue;
            const bool isLeft = join.left == subject;
            const auto& there = isLeft ? join.rightCardinality : join.leftCardinality;
            count += there.maximum == BMT_I_Association::CardinalityMany ? 1 : 0;
            count += CountFrom(isLeft ? join.right : join.left, id);
        }
        return count;
    }

    Answer mAnswer;
    std::vector<amd_id> mPath;
};

TEST(PathKeys, CountsWalksToManyFromTheBestBeginning)
{
    EXPECT_EQ(PathMaker().Count(), 0);
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        PathMaker path;
        const auto subjects = static_cast<std::int32_t>(2 + random() % 7);
        for (std::int32_t subject = 2; subject <= subjects; ++subject) {
            const auto other =
                static_cast<std::int32_t>(random() % static_cast<unsigned>(subject - 1)) + 1;
            const bool isMany = random() % 2 == 0;
            const bool isOtherMany = random() % 2 == 0;
            if (random() % 2 == 0)
                path.Join(subject, isMany, other, isOtherMany);
            else
                path.Join(other, isOtherMany, subject, isMany);
        }
        EXPECT_EQ(path.Count(), path.CountByTrying(subjects)) << round;
    }
}

TEST(PathKeys, PutsColumnsWhereTheyStand)
{
    const ToolModel model = qe::test::ImportText(R"(
        CREATE TABLE place (id INTEGER PRIMARY KEY, x INT, y INT, UNIQUE (x, y));
        CREATE TABLE trip (a INT, place INT NOT NULL REFERENCES place, x INT, b INT, y INT,
                           FOREIGN KEY (x, y) REFERENCES place (x, y));
        CREATE TABLE pass (place INTEGER PRIMARY KEY REFERENCES place, seat INT);)");
    struct Case
    {
        std::vector<std::string> subjects;
        std::vector<std::int64_t> positions;
    };
    // A composite key stands in the middle of its columns.
    const Case cases[] = {{{"trip", "place"}, {1000, 3000}}, {{"pass", "place"}, {0}}};
    for (const Case& test : cases) {
        const Answer answer = Ask(model, Connect(test.subjects));
        KeyMeasures measures(*model.model, answer);
        std::vector<std::int64_t> positions;
        for (const Alternative& alternative : answer.alternatives)
            positions.push_back(measures.Measure(alternative.joins).positions);
        std::sort(positions.begin(), positions.end());
        EXPECT_EQ(positions, test.positions) << test.subjects.front();
    }
}

/// Each model has two roads between A and Z, of which all criteria before the one that decides
/// think the same.
TEST(HistoryChoice, AsksItsCriteriaInTheirOrder)
{
    struct Case
    {
        const char* model;
        const char* path;
        std::string_view criterion;
    };
    const Case cases[] = {
        {"A >- M : am; M -< Z : mz; A >- N : an; N >- Z : nz", "an nz", decision::kWalksToMany},
        {"A >o-o M : am; M >o-o Z : mz; A >- N : an; N >- Z : nz", "an nz", decision::kKeys},
        {"A >- M : am; M >- Z : mz; A >- N : an; N - Z : nz", "an nz", decision::kReferringTables},
        {"A >- M : am; M >- Z : mz; A >- N : an; N >- Z : nz", "am mz", decision::kJoinNames},
    };
    for (const Case& test : cases) {
        ToolModel model = qe::test::MakeModel(test.model);
        model.advisor =
            std::make_shared<HistoryChoice>(std::make_shared<JoinHistory>(*model.model));
        const Answer answer = Ask(model, Connect({"A", "Z"}));
        EXPECT_EQ(NamesOf(answer, answer.path), test.path) << test.model;
        EXPECT_EQ(answer.criterion, test.criterion) << test.model;
    }
}

TEST(PassedTables, AreSkippedWhereAllJoinsMeetInTheSameColumns)
{
    const ToolModel model = qe::test::ImportText(R"(
        CREATE TABLE party (id INTEGER PRIMARY KEY, town INT UNIQUE);
        CREATE TABLE note (party_id INT NOT NULL REFERENCES party);
        CREATE TABLE person (party_id INT PRIMARY KEY REFERENCES party);
        CREATE TABLE house (town INT REFERENCES party (town));)");
    FormatOptions options;
    options.sql.passedTables = SqlOptions::EPassedTables::Skipped;
    EXPECT_EQ(qe::test::WriteAs("sql", model, Connect({"note", "person"}), options),
              "FROM note\n  LEFT OUTER JOIN person\n"
              "    ON note.party_id = person.party_id\n");
    EXPECT_THAT(qe::test::WriteAs("sql", model, Connect({"note", "person", "party"}), options),
                HasSubstr("party.id"));
    EXPECT_THAT(qe::test::WriteAs("sql", model, Connect({"note", "house"}), options),
                HasSubstr("JOIN party"));
}

/// Where every row refers to one, and every party has one, both statements show the same rows.
TEST(PassedTables, SkippingThemShowsTheSameRows)
{
    const std::string tables = R"(
        CREATE TABLE party (a INT, b INT, PRIMARY KEY (a, b));
        CREATE TABLE note (n INT, a INT NOT NULL, b INT NOT NULL,
                           FOREIGN KEY (a, b) REFERENCES party);
        CREATE TABLE visit (v INT, b INT NOT NULL, a INT NOT NULL,
                            FOREIGN KEY (a, b) REFERENCES party);
        CREATE TABLE person (a INT, b INT, PRIMARY KEY (a, b),
                             FOREIGN KEY (a, b) REFERENCES party);)";
    const ToolModel model = qe::test::ImportText(tables);
    const SqliteDatabase database = SqliteDatabase::OpenMemory();
    std::string rows;
    std::mt19937 random(3);
    for (int party = 0; party < 6; ++party) {
        const std::string key = std::to_string(party / 3) + ", " + std::to_string(party % 3);
        rows += "INSERT INTO party VALUES (" + key + "); INSERT INTO person VALUES (" + key + ");";
        for (unsigned note = 0; note <= random() % 3; ++note)
            rows += "INSERT INTO note VALUES (" + std::to_string(note) + ", " + key + ");" +
                    "INSERT INTO visit VALUES (" + std::to_string(note) + ", " +
                    std::to_string(party % 3) + ", " + std::to_string(party / 3) + ");";
    }
    qe::test::RunSql(database, tables + rows);
    FormatOptions joined;
    joined.sql.outerJoins = SqlOptions::EOuterJoins::Never;
    FormatOptions skipped = joined;
    skipped.sql.passedTables = SqlOptions::EPassedTables::Skipped;
    for (const std::vector<std::string>& subjects : {std::vector<std::string>{"note", "person"},
                                                     {"note", "visit"},
                                                     {"note", "visit", "person"}}) {
        const auto show = [&](const FormatOptions& options) {
            const std::string from = qe::test::WriteAs("sql", model, Connect(subjects), options);
            return qe::test::RunSql(database, "SELECT note.n, note.a, note.b, COUNT(*) " + from +
                                                  " GROUP BY 1, 2, 3 ORDER BY 1, 2, 3");
        };
        EXPECT_EQ(show(joined), show(skipped));
        EXPECT_FALSE(show(joined).empty());
        EXPECT_THAT(qe::test::WriteAs("sql", model, Connect(subjects), skipped),
                    testing::Not(HasSubstr("\"party\"")));
    }
}

} // namespace
