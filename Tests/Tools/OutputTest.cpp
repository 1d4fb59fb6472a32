#include "Engine/Model/ModelBuilder.h"
#include "Tests/Support/ModelText.h"
#include "Tools/Ask/Asker.h"
#include "Tools/InputError.h"
#include "Tools/Model/ToolModel.h"
#include "Tools/Output/DisplayText.h"
#include "Tools/Output/Format.h"
#include "Tools/Output/JsonAnswer.h"

#include <gmock/gmock.h>

#include <set>
#include <sqlite3.h>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::ModelText;
using testing::ElementsAre;
using testing::HasSubstr;

const char* const kShop = R"(
    Orders(Id, BillTo, ShipTo, Payer), Customer(Id, Name, RegionId), Region(Id, Name)
    Customer >o-o Region : cr on [Model].[Customer].[RegionId] = [Model].[Region].[Id]
    Bill To ->2 Customer
    Ship To ->2 Customer
    Payer -> Customer
    Orders >- Bill To : bill on [Model].[Orders].[BillTo] = [Model].[Bill To].[Id]
    Orders >- Ship To : ship on [Model].[Orders].[ShipTo] = [Model].[Customer].[Id]
    Orders >- Payer : payer on [Model].[Orders].[Payer] = [Model].[Payer].[Id]
    bill region -> cr : Bill To, Region
)";

const char* const kRows = R"(
    CREATE TABLE "Orders"("Id", "BillTo", "ShipTo", "Payer");
    CREATE TABLE "Customer"("Id", "Name", "RegionId");
    CREATE TABLE "Region"("Id", "Name");
    INSERT INTO "Region" VALUES (1, 'North'), (2, 'South');
    INSERT INTO "Customer" VALUES (1, 'Ann', 1), (2, 'Bob', NULL), (3, 'Cy', 2);
    INSERT INTO "Orders" VALUES (1, 1, 2, 3), (2, 2, 3, 1), (3, 3, 1, 2);
)";

/// An SQLite database in memory.
class Database
{
public:
    explicit Database(const std::string& script)
    {
        sqlite3_open(":memory:", &mDatabase);
        Run(script);
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close(mDatabase); }

    /// Gives one line for each row; the message when the script fails.
    std::vector<std::string> Run(const std::string& script)
    {
        std::vector<std::string> rows;
        const auto addRow = [](void* target, int count, char** values, char**) {
            std::string row;
            for (int column = 0; column < count; ++column)
                row += std::string(column == 0 ? "" : " ") +
                       (values[column] == nullptr ? "-" : values[column]);
            static_cast<std::vector<std::string>*>(target)->push_back(row);
            return 0;
        };
        char* message = nullptr;
        if (sqlite3_exec(mDatabase, script.c_str(), addRow, &rows, &message) != SQLITE_OK)
            rows.emplace_back(message);
        sqlite3_free(message);
        return rows;
    }

private:
    sqlite3* mDatabase = nullptr;
};

ToolModel Model(const char* text)
{
    return {ModelText(text).GetModel()};
}

Question Connect(std::vector<std::string> subjects)
{
    Question question;
    question.subjects = std::move(subjects);
    return question;
}

std::string Write(const char* format, const ToolModel& model, const Question& question,
                  const FormatOptions& options = {})
{
    const Answer answer = Ask(model, question);
    std::ostringstream out;
    FindFormat(format)->write(out, {model, question, answer, options});
    return out.str();
}

TEST(OutputTest, TextTellsPathAlternativesAndWhatDecided)
{
    const ToolModel model = Model(R"(
        Orders >- Customer : oc on [Model].[Orders].[Key] = [Model].[Customer].[Key]
        Orders >- Shipper : os
        Customer >o-o Region : cr
        Shipper >- Region : sr
        Orders(Key), Customer(Key), Budget(Amount)
    )");
    EXPECT_EQ(Write("text", model, Connect({"Orders", "Region"})), R"(Path of 2 joins, weight 34
  1. Orders 1..n -- 1..1 Customer
     oc (relationship, weight 17)
     on [Model].[Orders].[Key] = [Model].[Customer].[Key]
  2. Customer 0..n -- 0..1 Region
     cr (relationship, weight 17)

2 candidates
     #  weight  facts  branches  rank  joins
  *  1      34      1         0     0  oc, cr
     2      34      1         0     0  os, sr
Decided by: keys
)");
    EXPECT_THAT(Write("text", model, Connect({"Budget", "Region"})),
                HasSubstr("The subjects cannot be connected. They fall into 2 groups:\n"
                          "  1. Budget\n  2. Region\n"
                          "Joining these 2 would connect all: Budget, Region\n\nWarning: "));
}

TEST(OutputTest, JsonHasOneFormForEveryOperation)
{
    const ToolModel model = Model("A >- M : am; M >o-o Z : mz");
    Question question = Connect({"A", "Z"});
    const nlohmann::json json = nlohmann::json::parse(Write("json", model, question));
    EXPECT_EQ(json, nlohmann::json::parse(R"({
        "version": 1, "operation": "path", "subjects": ["A", "Z"], "secondSet": [],
        "governors": {"crossProductAllowed": 0, "shortcutGrouping": 0}, "settings": {},
        "connected": true, "weight": 34, "path": ["102:1", "102:2"],
        "criterion": "only candidate", "chosen": 0, "mainObject": null, "candidates": 1,
        "alternatives": [{"joins": ["102:1", "102:2"], "weight": 34, "factTables": 1,
                          "manyToManyJoins": 0, "branches": 0, "rank": null}],
        "joins": [{"id": "102:1", "name": "am", "kind": "relationship", "left": "A",
                   "leftCardinality": "1..n", "right": "M", "rightCardinality": "1..1",
                   "condition": "", "weight": 17},
                  {"id": "102:2", "name": "mz", "kind": "relationship", "left": "M",
                   "leftCardinality": "0..n", "right": "Z", "rightCardinality": "0..1",
                   "condition": "", "weight": 17}],
        "endPairs": [], "joinedSubjects": [], "groups": [], "bridge": [], "warnings": [],
        "notices": [], "error": null})"));
    const auto keysOf = [](const nlohmann::json& value) {
        std::set<std::string> keys;
        for (const auto& entry : value.items())
            keys.insert(entry.key());
        return keys;
    };
    for (const EOperation operation :
         {EOperation::BestPaths, EOperation::JoinedSubjects, EOperation::TreeJoins}) {
        question.operation = operation;
        EXPECT_EQ(keysOf(nlohmann::json::parse(Write("json", model, question))), keysOf(json));
    }
}

TEST(OutputTest, SqlJoinsRolesOfATableUnderTheirNames)
{
    EXPECT_EQ(Write("sql", Model(kShop), Connect({"Orders", "Bill To", "Ship To", "Region"})),
              R"(FROM "Orders"
  INNER JOIN "Customer" AS "Bill To"
    ON "Orders"."BillTo" = "Bill To"."Id"
  INNER JOIN "Customer" AS "Ship To"
    ON "Orders"."ShipTo" = "Ship To"."Id"
  LEFT OUTER JOIN "Region"
    ON "Bill To"."RegionId" = "Region"."Id"
)");
}

TEST(OutputTest, SqlGivesTheRowsOfJoinsWrittenByHand)
{
    struct Case
    {
        std::vector<std::string> subjects;
        SqlOptions::EOuterJoins outerJoins;
        const char* columns;
        const char* byHand;
    };
    using EOuterJoins = SqlOptions::EOuterJoins;
    const Case cases[] = {
        {{"Orders", "Bill To", "Ship To", "Region"},
         EOuterJoins::ByCardinality,
         "\"Orders\".\"Id\", \"Bill To\".\"Name\", \"Ship To\".\"Name\", \"Region\".\"Name\"",
         R"("Orders" o JOIN "Customer" b ON o."BillTo" = b."Id" JOIN "Customer" s
            ON o."ShipTo" = s."Id" LEFT JOIN "Region" r ON b."RegionId" = r."Id")"},
        {{"Orders", "Bill To", "Region"},
         EOuterJoins::Never,
         "\"Orders\".\"Id\", \"Bill To\".\"Name\", 0, \"Region\".\"Name\"",
         R"("Orders" o JOIN "Customer" b ON o."BillTo" = b."Id"
            JOIN "Region" r ON b."RegionId" = r."Id" JOIN (SELECT 0 AS "Name") s)"},
        // The payer is taken for the customer, whose region it has.
        {{"Orders", "Payer", "Region"},
         EOuterJoins::ByCardinality,
         "\"Orders\".\"Id\", \"Payer\".\"Name\", 0, \"Region\".\"Name\"",
         R"("Orders" o JOIN "Customer" b ON o."Payer" = b."Id"
            LEFT JOIN "Region" r ON b."RegionId" = r."Id" JOIN (SELECT 0 AS "Name") s)"},
    };
    const ToolModel model = Model(kShop);
    Database database(kRows);
    for (const Case& entry : cases) {
        Question question = Connect(entry.subjects);
        question.restriction.withoutJoins = {entry.subjects[1] == "Payer" ? "bill" : "payer"};
        FormatOptions options;
        options.sql.outerJoins = entry.outerJoins;
        const std::string from = Write("sql", model, question, options);
        EXPECT_EQ(database.Run("SELECT " + std::string(entry.columns) + '\n' + from + "ORDER BY 1"),
                  database.Run("SELECT o.\"Id\", b.\"Name\", s.\"Name\", r.\"Name\" FROM " +
                               std::string(entry.byHand) + " ORDER BY 1"))
            << from;
    }
    FormatOptions options;
    options.sql.select = SqlOptions::ESelect::FirstItems;
    EXPECT_THAT(database.Run(Write("sql", model, Connect({"Region"}), options)),
                ElementsAre("1 North", "2 South"));
    EXPECT_EQ(database.Run(Write("sql", model, Connect({"Region", "Customer"}), options)).size(),
              3U);
}

TEST(OutputTest, SqlIsRefusedWhereAConditionIsMissingOrSaysNothing)
{
    const Question question = Connect({"A", "B"});
    for (const char* text :
         {"A >- B : j", "A >- B : j on [x] = = 2", "A >- B : j on [Model].[C].[k] = 1; C(k)"})
        EXPECT_THROW(static_cast<void>(Write("sql", Model(text), question)), InputError) << text;
}

/// Names that mean something else to whoever reads them carelessly.
const std::vector<std::string> kHostileNames{"a\"b'c--",
                                             "x]; DROP TABLE t; --",
                                             "line\nbreak\r\ttab",
                                             "\x1b[31mred\x07",
                                             "\xE2\x80\xAEltr",
                                             "a.b.[c]]d]",
                                             std::string(80, 'l') + "1",
                                             std::string(80, 'l') + "2",
                                             "Case",
                                             "case"};

std::string Double(const std::string& text, char letter)
{
    std::string doubled;
    for (const char each : text)
        doubled += std::string(each == letter ? 2 : 1, each);
    return doubled;
}

TEST(OutputTest, HostileNamesStayNames)
{
    qe::model::ModelBuilder builder;
    const amd_id space = builder.AddNamespace("Model");
    const amd_id fact = builder.AddQuerySubject(space, "Fact");
    std::string script = "CREATE TABLE \"Fact\"(\"k\"); INSERT INTO \"Fact\" VALUES (1);";
    builder.AddItem(fact, "k");
    std::vector<std::string> subjects{"Fact"};
    int number = 0;
    for (const std::string& name : kHostileNames) {
        const std::string table = "t" + std::to_string(++number) + "\"'";
        qe::model::ObjectOptions options;
        options.source = table;
        const amd_id subject = builder.AddQuerySubject(space, name, options);
        builder.AddItem(subject, name);
        builder.AddRelationship(
            space, name, {fact, qe::model::OneToMany}, {subject, qe::model::OneToOne},
            "[Model].[Fact].[k] = [Model].[" + Double(name, ']') + "].[" + Double(name, ']') + "]");
        subjects.push_back("100:" + std::to_string(number + 1));
        const std::string quoted = '"' + Double(table, '"') + '"';
        script += "CREATE TABLE " + quoted + "(\"" + Double(name, '"') + "\"); INSERT INTO " +
                  quoted + " VALUES (1);";
    }
    const ToolModel model{builder.Build()};
    const Question question = Connect(subjects);

    FormatOptions options;
    options.sql.select = SqlOptions::ESelect::FirstItems;
    Database database(script);
    EXPECT_THAT(database.Run(Write("sql", model, question, options)),
                ElementsAre("1 1 1 1 1 1 1 1 1 1 1"));
    const nlohmann::json json = nlohmann::json::parse(Write("json", model, question));
    for (std::size_t index = 0; index < kHostileNames.size(); ++index)
        EXPECT_EQ(json["joins"][index]["name"], kHostileNames[index]);
    for (const char letter : Write("text", model, question))
        EXPECT_TRUE(letter == '\n' || static_cast<unsigned char>(letter) >= 0x20);
}

TEST(OutputTest, DisplayTextEscapesWhatIsNoText)
{
    EXPECT_EQ(ToDisplayText("a\tb\x1b\x7f\xC2\x85\xE2\x80\xAE\xFF\xC0\x80\xED\xA0\x80 \xC3\xA9"),
              "a\\tb\\x1B\\x7F\\u{0085}\\u{202E}\\xFF\\xC0\\x80\\xED\\xA0\\x80 \xC3\xA9");
    EXPECT_EQ(DisplayWidth("\xE6\x97\xA5"), 2U);
    EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U);
}

} // namespace
