#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SchemaCheck.h"
#include "Tests/Toolkit/SqlRows.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <set>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::MakeModel;
using qe::test::RunSql;
using qe::test::WriteAs;
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

TEST(OutputTest, TextTellsPathAlternativesAndWhatDecided)
{
    const ToolModel model = MakeModel(R"(
        Orders >- Customer : oc on [Model].[Orders].[Key] = [Model].[Customer].[Key]
        Orders >- Shipper : os
        Customer >o-o Region : cr
        Shipper >- Region : sr
        Orders(Key), Customer(Key), Budget(Amount)
    )");
    EXPECT_EQ(WriteAs("text", model, Connect({"Orders", "Region"})), R"(Path of 2 joins, weight 34
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

Rows: one for each row of Orders
Outer joins: Region may be missing; the SQL keeps the rows without it
Ambiguous: 2 paths are equally cheap, and the columns that they join decided.
  Way out: To take candidate 2: --favour os
)");
    EXPECT_THAT(WriteAs("text", model, Connect({"Budget", "Region"})),
                HasSubstr("The subjects cannot be connected. They fall into 2 groups:\n"
                          "  1. Budget\n  2. Region\n"
                          "Joining these 2 would connect all: Budget, Region\n\nMultiplied: no "
                          "join connects Budget and Region"));
}

TEST(OutputTest, JsonHasOneFormForEveryOperation)
{
    const ToolModel model = MakeModel("A >- M : am; M >o-o Z : mz");
    Question question = Connect({"A", "Z"});
    const nlohmann::json json = nlohmann::json::parse(WriteAs("json", model, question));
    EXPECT_EQ(json, nlohmann::json::parse(R"({
        "version": 1, "operation": "path", "subjects": ["A", "Z"], "secondSet": [],
        "governors": {"crossProductAllowed": 0, "shortcutGrouping": 0}, "settings": {},
        "connected": true, "weight": 34, "path": ["102:1", "102:2"],
        "criterion": "only candidate", "pastUse": null, "chosen": 0, "mainObject": null, "candidates": 1,
        "alternatives": [{"joins": ["102:1", "102:2"], "weight": 34, "factTables": 1,
                          "manyToManyJoins": 0, "branches": 0, "rank": null}],
        "joins": [{"id": "102:1", "name": "am", "kind": "relationship", "left": "A",
                   "leftCardinality": "1..n", "right": "M", "rightCardinality": "1..1",
                   "condition": "", "weight": 17},
                  {"id": "102:2", "name": "mz", "kind": "relationship", "left": "M",
                   "leftCardinality": "0..n", "right": "Z", "rightCardinality": "0..1",
                   "condition": "", "weight": 17}],
        "endPairs": [], "joinedSubjects": [], "groups": [], "bridge": [],
        "decisions": [],
        "risks": {
            "rowsOf": ["A"],
            "multiplied": [{"reason": "dimension", "subjects": ["Z"], "by": ["A"], "at": null,
                            "joins": ["102:1", "102:2"],
                            "text": "rows of Z come once for each row of A.", "advice": ""}],
            "lost": [{"subject": "A", "kept": true, "dimension": false, "missing": ["Z"],
                      "joins": ["102:2"], "text": "rows of A without Z stay, by outer joins.",
                      "advice": ""},
                     {"subject": "Z", "kept": false, "dimension": true, "missing": ["M"],
                      "joins": ["102:2"], "text": "rows of Z without M are left out.",
                      "advice": "The SQL begins with A, whose rows it keeps; --start Z keeps those of Z instead."}],
            "outerJoined": ["Z"], "ambiguous": null},
        "warnings": [],
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
        EXPECT_EQ(keysOf(nlohmann::json::parse(WriteAs("json", model, question))), keysOf(json));
    }
}

/// Returns the document with each of its values, in turn, of a wrong type, and without each of its
/// keys.
std::vector<std::string> Mutate(const nlohmann::json& document)
{
    std::vector<std::string> mutations;
    const nlohmann::json values = document.flatten();
    for (const auto& entry : values.items()) {
        nlohmann::json mutated = document;
        mutated[nlohmann::json::json_pointer(entry.key())] = {{"wrong", true}};
        mutations.push_back(mutated.dump());
    }
    for (const auto& entry : document.items()) {
        nlohmann::json mutated = document;
        mutated.erase(entry.key());
        mutations.push_back(mutated.dump());
    }
    return mutations;
}

TEST(OutputTest, SchemaAcceptsEveryReportAndRefusesMutations)
{
    const qe::test::TemporaryFolder folder;
    const std::string shop = folder.Write("shop.sql", qe::test::kShopTables);
    const std::string lines = "{\"id\": [7], \"subjects\": [\"sale\", \"customer\"], \"joins\": "
                              "[[\"sale.payer_id\", \"customer.id\"]]}\n"
                              "{\"id\": 8, \"subjects\": [\"isle\"]}\n[";
    const std::vector<std::vector<std::string>> commands{
        {"path", shop, "sale", "region", "--set", "Log/Level=0"},
        {"best", shop, "sale", "region"},
        {"subjects", shop, "sale", "region"},
        {"between", shop, "--from", "sale", "--to", "region"},
        {"tree", shop, "sale", "region"},
        {"path", shop, "sale", "island", "--cross-product", "2"},
        {"facts", shop},
        {"shortcuts", shop, "--roles", "shortcuts"},
        {"check", shop, "--limit", "1"},
        {"check", QEREFINER_SOURCE_DIR "/Examples/retail/model.json", "--all"},
        {"evaluate", shop},
    };
    std::vector<std::string> reports;
    std::vector<std::string> mutations;
    for (std::vector<std::string> command : commands) {
        command.insert(command.end(), {"--format", "json"});
        reports.push_back(qe::test::RunTool(command, lines).output);
        // Of answers, which have one form, the first is enough.
        if (command.front() == "path" || reports.size() > 6) {
            const auto mutated = Mutate(nlohmann::json::parse(reports.back()));
            mutations.insert(mutations.end(), mutated.begin(), mutated.end());
        }
    }
    for (const std::string& line :
         qe::test::SplitList(qe::test::RunTool({"batch", shop}, lines).output, '\n'))
        reports.push_back(line);
    const auto refused = qe::test::FindRefused("answer.schema.json", reports);
    if (!refused)
        GTEST_SKIP() << "python3-jsonschema is not installed";
    EXPECT_THAT(*refused, testing::IsEmpty());
    const auto refusedMutations = qe::test::FindRefused("answer.schema.json", mutations);
    EXPECT_EQ(refusedMutations->size(), mutations.size());
}

TEST(OutputTest, SqlJoinsRolesOfATableUnderTheirNames)
{
    EXPECT_EQ(WriteAs("sql", MakeModel(kShop), Connect({"Orders", "Bill To", "Ship To", "Region"})),
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
    const ToolModel model = MakeModel(kShop);
    const SqliteDatabase database = SqliteDatabase::OpenMemory();
    RunSql(database, kRows);
    for (const Case& entry : cases) {
        Question question = Connect(entry.subjects);
        question.restriction.withoutJoins = {entry.subjects[1] == "Payer" ? "bill" : "payer"};
        FormatOptions options;
        options.sql.outerJoins = entry.outerJoins;
        const std::string from = WriteAs("sql", model, question, options);
        EXPECT_EQ(
            RunSql(database, "SELECT " + std::string(entry.columns) + '\n' + from + "ORDER BY 1"),
            RunSql(database, "SELECT o.\"Id\", b.\"Name\", s.\"Name\", r.\"Name\" FROM " +
                                 std::string(entry.byHand) + " ORDER BY 1"))
            << from;
    }
    FormatOptions options;
    options.sql.select = SqlOptions::ESelect::FirstItems;
    EXPECT_EQ(RunSql(database, WriteAs("sql", model, Connect({"Region"}), options)),
              (qe::test::SqlRows{{"1", "North"}, {"2", "South"}}));
    const std::string both = WriteAs("sql", model, Connect({"Region", "Customer"}), options);
    EXPECT_EQ(RunSql(database, both).size(), 3U);
}

struct RoleCase
{
    /// The namespaces of the tables and of the shortcuts to customers; empty for none.
    const char* tables;
    const char* roles;
    const char* buyer;
    const char* conditions;
};

/// Returns a model of orders and customers, some of whom pay for others, with relationship
/// shortcuts that lead from the orders to the buyer and from there to "Pay.[er]".
ToolModel MakeRoleModel(const RoleCase& names)
{
    using namespace qe::model;
    ModelBuilder builder;
    const auto enter = [&builder](std::string name) {
        return name.empty() ? amd_id() : builder.AddNamespace(std::move(name));
    };
    const amd_id space = enter(names.tables);
    const amd_id folder = builder.AddFolder(space, "Folder");
    const amd_id roles = names.roles == std::string(names.tables) ? folder : enter(names.roles);
    const amd_id orders = builder.AddQuerySubject(folder, "Orders");
    const amd_id customer = builder.AddQuerySubject(space, "Customer");
    builder.AddItem(orders, "Id");
    builder.AddItem(orders, "Cust");
    builder.AddItem(customer, "Id");
    builder.AddItem(customer, "Payer");
    const auto refer = [&names](const std::string& subject, const std::string& item) {
        QualifiedName name{names.tables, subject, item};
        name.erase(name.begin(), name.begin() + (name.front().empty() ? 1 : 0));
        return ToReferenceText(name);
    };
    builder.AddRelationship(space, "order", {orders, kOneToMany}, {customer},
                            refer("Orders", "Cust") + '=' + refer("Customer", "Id"));
    builder.AddRelationship(space, "payment", {customer, kOneToMany}, {customer},
                            refer("Customer", "Payer") + '=' + refer("Customer", "Id"));
    const amd_id buyer = builder.AddShortcut(roles, names.buyer, {customer, 2});
    const amd_id payer = builder.AddShortcut(roles, "Pay.[er]", {customer, 2});
    builder.AddRelationshipShortcut(roles, "bought", {"order", orders, buyer});
    builder.AddRelationshipShortcut(roles, "paid", {"payment", buyer, payer});
    return {builder.Build()};
}

TEST(OutputTest, SqlOverRelationshipShortcutsReadsTheColumnsOfTheirEnds)
{
    const RoleCase cases[] = {
        {"", "", "Buyer", "[Orders].[Cust] = [Buyer].[Id]; [Buyer].[Payer] = [Pay.[er]]].[Id]"},
        {"", "N", "Buyer",
         "[Orders].[Cust] = [N].[Buyer].[Id]; [N].[Buyer].[Payer] = [N].[Pay.[er]]].[Id]"},
        {"N", "", "Buyer",
         "[N].[Orders].[Cust] = [Buyer].[Id]; [Buyer].[Payer] = [Pay.[er]]].[Id]"},
        {"N", "M", "Buyer",
         "[N].[Orders].[Cust] = [M].[Buyer].[Id]; [M].[Buyer].[Payer] = [M].[Pay.[er]]].[Id]"},
        // Names that are taken elsewhere, once by a namespace.
        {"", "Orders", "Customer",
         "[Orders].[Cust] = [Orders].[Customer].[Id]; "
         "[Orders].[Customer].[Payer] = [Orders].[Pay.[er]]].[Id]"},
        {"N].[M", "", "Customer",
         "[N]].[M].[Orders].[Cust] = [Customer].[Id]; [Customer].[Payer] = [Pay.[er]]].[Id]"},
    };
    const SqliteDatabase database = SqliteDatabase::OpenMemory();
    RunSql(database, R"(
        CREATE TABLE "Orders"("Id", "Cust"); CREATE TABLE "Customer"("Id", "Payer");
        INSERT INTO "Customer" VALUES (7, 8), (8, 9), (9, 9);
        INSERT INTO "Orders" VALUES (1, 7), (2, 8), (3, 9);
    )");
    for (const RoleCase& names : cases) {
        const ToolModel model = MakeRoleModel(names);
        const Question question = Connect({"100:1", "109:2"});
        const Answer answer = Ask(model, question);
        std::string conditions;
        for (const amd_id& join : answer.path)
            conditions += (conditions.empty() ? "" : "; ") + answer.FindJoin(join)->condition;
        EXPECT_EQ(conditions, names.conditions);
        const std::string from = WriteAs("sql", model, question);
        EXPECT_EQ(RunSql(database,
                         "SELECT \"Orders\".\"Id\", \"Pay.[er]\".\"Id\"\n" + from + "ORDER BY 1"),
                  (qe::test::SqlRows{{"1", "8"}, {"2", "9"}, {"3", "9"}}))
            << from;
        EXPECT_EQ(qe::test::MistakesOf([&model] {
                      static_cast<void>(ReadModelText(WriteModelText(model), "roles.json"));
                  }),
                  "no mistake");
    }
}

TEST(OutputTest, SqlIsRefusedWhereAConditionIsMissingOrSaysNothing)
{
    const Question question = Connect({"A", "B"});
    for (const char* text :
         {"A >- B : j", "A >- B : j on [x] = = 2", "A >- B : j on [Model].[C].[k] = 1; C(k)",
          "A >- B : j on [Model].[A] = [Model].[B]"})
        EXPECT_THROW(static_cast<void>(WriteAs("sql", MakeModel(text), question)), InputError)
            << text;
}

TEST(OutputTest, DisplayTextEscapesWhatIsNoText)
{
    EXPECT_EQ(ToDisplayText(
                  "a\tb\x1b\x7f\xC2\x85\xE2\x80\xA8\xE2\x80\xAE\xFF\xC0\x80\xED\xA0\x80 \xC3\xA9"),
              "a\\tb\\x1B\\x7F\\u{0085}\\u{2028}\\u{202E}\\xFF\\xC0\\x80\\xED\\xA0\\x80 \xC3\xA9");
    EXPECT_EQ(DisplayWidth("\xE6\x97\xA5"), 2U);
    EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U);
}

} // namespace
