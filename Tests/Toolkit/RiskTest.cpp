#include "Toolkit/Ask/Risks.h"

#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/DetailRule.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::MakeModel;
using qe::test::ToolRun;
using qe::test::WriteAs;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Returns what is said of the path between the subjects, such as "chasm A B at D; lost B".
std::string RisksOf(const std::string& model, const std::vector<std::string>& subjects,
                    const JoinOptions& options = {})
{
    const Question question = Connect(subjects);
    const Answer answer = Ask(MakeModel(model), question);
    const Risks risks = FindRisks(question, answer, options);
    std::string text;
    const auto add = [&text](const std::string& part) {
        text += (text.empty() ? "" : "; ") + part;
    };
    for (const Multiplied& entry : risks.multiplied) {
        if (entry.reason == EMultiplied::Dimension)
            continue;
        std::string part(ToText(entry.reason));
        for (const amd_id& subject : entry.subjects)
            part += ' ' + answer.NameOf(subject);
        add(part + (entry.at.IsValid() ? " at " + answer.NameOf(entry.at) : ""));
    }
    for (const Lost& entry : risks.lost) {
        if (!entry.isKept && !entry.isDimension)
            add("lost " + answer.NameOf(entry.subject));
    }
    return text;
}

constexpr const char* kStar = R"(
    Sale >o- Product; Product >o- Category; Sale >o- Store; Sale >o-o Promotion
    Product >o- Supplier; Store >o- City; Stock >o- Product; Stock >o- Store; Product - Description
    Member >o- Customer; Member >o- Club; Sale >o- Customer; SaleLine >o- Sale; Tag >o-o< Product
)";

TEST(RiskTest, TrapsAreToldApartAndWhatIsExpectedIsNoRisk)
{
    struct Case
    {
        std::vector<std::string> subjects;
        const char* risks;
    };
    const Case cases[] = {
        // One fact with its dimensions, also optional ones, in any order.
        {{"Sale", "Category", "Store"}, ""},
        {{"City", "Promotion", "Supplier", "Sale"}, ""},
        // One-to-one, and a bridge that is asked for by name.
        {{"Product", "Description"}, ""},
        {{"Description", "Sale"}, ""},
        {{"Customer", "Member", "Club"}, ""},
        {{"Customer", "Club"}, "bridge Customer Club; lost Customer; lost Club"},
        {{"SaleLine", "Sale", "Store"}, "fan Sale; lost Sale"},
        {{"SaleLine", "Store"}, ""},
        {{"Sale", "Club"}, "chasm Sale at Customer"},
        {{"Stock", "Sale", "Product"}, "chasm Stock Sale at Product; lost Sale"},
        {{"Tag", "Product"}, "many-to-many Tag Product; lost Product"},
        {{"Sale"}, ""},
    };
    for (const Case& entry : cases)
        EXPECT_EQ(RisksOf(kStar, entry.subjects), entry.risks)
            << testing::PrintToString(entry.subjects);
    EXPECT_EQ(RisksOf("A >- B; C, D", {"A", "C"}), "cross product A C");
    EXPECT_EQ(RisksOf(kStar, {"Sale", "Promotion"},
                      {.outerJoins = JoinOptions::EOuterJoins::Never, .start = {}}),
              "lost Sale");
}

TEST(RiskTest, DetailsAreKnownByTheirNames)
{
    for (const auto& [detail, fact] :
         std::vector<std::pair<const char*, const char*>>{{"order_items", "orders"},
                                                          {"InvoiceLine", "Invoice"},
                                                          {"Order Details", "Orders"},
                                                          {"SalesOrderDetail", "SalesOrderHeader"}})
        EXPECT_TRUE(IsNamedAfter(detail, fact)) << detail;
    for (const auto& [detail, fact] :
         std::vector<std::pair<const char*, const char*>>{{"product", "product_category"},
                                                          {"sales", "store"},
                                                          {"subcategory", "category"},
                                                          {"orders", "orders"},
                                                          {"item", ""}})
        EXPECT_FALSE(IsNamedAfter(detail, fact)) << detail;
    // A bridge is named after both of its ends.
    EXPECT_EQ(RisksOf("customer_household >- customer; customer_household >- household",
                      {"customer", "customer_household"}),
              "");
    // Many dimensions of its own make a fact as well.
    const std::string fact = "Visit >- A; Visit >- B; Visit >- C; Visit >- D; Bill >- Visit";
    EXPECT_EQ(RisksOf(fact, {"Bill", "Visit"}), "fan Visit");
    EXPECT_EQ(RisksOf(fact + "; Bill >- E; Bill >- F", {"Bill", "Visit"}), "");
}

constexpr const char* kTwoWays = R"(
    A >- M : am; M >- Z : mz; A >- L : al; L >- Z : lz; B >- Z : bz; Z(k)
)";

TEST(RiskTest, AmbiguityTellsWhatDecidedAndWhatTurnsTheChoice)
{
    const ToolModel model = MakeModel(kTwoWays);
    EXPECT_THAT(WriteAs("text", model, Connect({"A", "Z"})),
                HasSubstr("\nAmbiguous: 2 paths are equally cheap, and only the names of their "
                          "joins decided, which is arbitrary.\n"
                          "  Way out: To take candidate 2: --favour am\n"));
    EXPECT_FALSE(Ask(model, Connect({"A", "M"})).ambiguity);
    Question best = Connect({"A", "Z"});
    best.operation = EOperation::BestPaths;
    EXPECT_THAT(WriteAs("text", model, best), HasSubstr("nothing chooses among them"));
    best.favouredJoins = {"am"};
    EXPECT_THAT(WriteAs("text", model, best), Not(HasSubstr("Ambiguous")));

    // Joins that weigh least already can only be required, and names that two joins share are no
    // help.
    const ToolModel same = MakeModel("A >= M : j; M >= Z : j; A >= L : j; L >= Z : j");
    const Answer answer = Ask(same, Connect({"A", "Z"}));
    ASSERT_TRUE(answer.ambiguity);
    EXPECT_TRUE(answer.ambiguity->isArbitrary);
    ASSERT_EQ(answer.ambiguity->turns.size(), 1U);
    Question turned = Connect({"A", "Z"});
    turned.requiredJoins = answer.ambiguity->turns[0].required;
    EXPECT_THAT(turned.requiredJoins, testing::ElementsAre(StartsWith("136:")));
    EXPECT_EQ(Ask(same, turned).path, answer.alternatives[1].joins);
}

/// Sets a user setting while it lives.
class SettingForTest
{
public:
    explicit SettingForTest(int trees)
    {
        qe::SettingsOverride::Set("JoinGraph", "CheapestTreesBound", trees);
    }
    ~SettingForTest() { qe::SettingsOverride::Clear("JoinGraph", "CheapestTreesBound"); }
    SettingForTest(const SettingForTest&) = delete;
    SettingForTest& operator=(const SettingForTest&) = delete;
};

TEST(RiskTest, ListsThatWereCutAreToldHoweverShort)
{
    const qe::test::TemporaryFolder folder;
    const std::string tables = folder.Write("tables.sql", R"(
        CREATE TABLE z(id INTEGER PRIMARY KEY);
        CREATE TABLE m(id INTEGER PRIMARY KEY, z INTEGER REFERENCES z);
        CREATE TABLE l(id INTEGER PRIMARY KEY, z INTEGER REFERENCES z);
        CREATE TABLE a(m INTEGER REFERENCES m, l INTEGER REFERENCES l);)");
    const SettingForTest setting(1);
    const ToolRun run = qe::test::RunTool({"path", tables, "a", "z", "--fail-on", "ambiguous"});
    EXPECT_THAT(run.output, HasSubstr("Ambiguous: only 1 of 2 equally cheap paths were listed: "
                                      "the choice may be arbitrary.\n"));
    EXPECT_EQ(run.code, EExitCode::Risky);
    const std::string request =
        R"({"subjects": ["a", "z"], "joins": [["a.m", "m.id"], ["m.z", "z.id"]]})";
    EXPECT_THAT(qe::test::RunTool({"evaluate", tables}, request).output,
                HasSubstr("that were cut, so that the choice may be arbitrary: 1\n"));
}

class RiskCommands : public testing::Test
{
protected:
    ToolRun RunWith(std::vector<std::string> arguments, const std::string& input = {}) const
    {
        std::replace(arguments.begin(), arguments.end(), std::string("@"), mTables);
        return qe::test::RunTool(arguments, input);
    }

private:
    qe::test::TemporaryFolder mFolder;
    std::string mTables = mFolder.Write("tables.sql", R"(
        CREATE TABLE product(id INTEGER PRIMARY KEY);
        CREATE TABLE promotion(id INTEGER PRIMARY KEY);
        CREATE TABLE sale(product_id INTEGER NOT NULL REFERENCES product,
                          promotion_id INTEGER REFERENCES promotion);
        CREATE TABLE stock(product_id INTEGER NOT NULL REFERENCES product);)");
};

TEST_F(RiskCommands, SqlCarriesCommentsAndNoticesUnlessNothingIsToBeSaid)
{
    const std::vector<std::string> ask{"path", "@", "sale", "stock", "--format", "sql"};
    const ToolRun run = RunWith(ask);
    EXPECT_EQ(run.code, EExitCode::Done);
    EXPECT_THAT(run.output, StartsWith("-- Multiplied: sale and stock meet at product (chasm"));
    EXPECT_THAT(run.output,
                HasSubstr("\n-- Lost: rows of stock without sale are left out.\n"
                          "--   Way out: The SQL begins with sale, whose rows it keeps; "
                          "--start stock keeps those of stock instead.\nFROM sale"));
    EXPECT_THAT(run.error, StartsWith("warning: multiplied: sale and stock meet"));
    for (const char* subject : {"product", "promotion"}) {
        const ToolRun harmless = RunWith({"path", "@", "sale", subject, "--format", "sql"});
        EXPECT_THAT(harmless.output, StartsWith("FROM sale\n"));
        EXPECT_THAT(harmless.error, IsEmpty());
    }
    const ToolRun page = RunWith({"path", "@", "sale", "stock", "--format", "json", "--quiet"});
    EXPECT_THAT(page.error, IsEmpty());
    const auto json = nlohmann::json::parse(page.output);
    EXPECT_EQ(json["risks"]["multiplied"][0]["reason"], "chasm");
    EXPECT_EQ(json["risks"]["rowsOf"], nlohmann::json::parse(R"(["sale", "stock"])"));
}

TEST_F(RiskCommands, FailOnEndsWithACodeOfItsOwnAndQuietSaysNothing)
{
    struct Case
    {
        std::vector<std::string> arguments;
        EExitCode code;
    };
    const Case cases[] = {
        {{"path", "@", "sale", "stock", "--fail-on", "ambiguous,multiplied"}, EExitCode::Risky},
        {{"tree", "@", "sale", "stock", "--fail-on", "lost"}, EExitCode::Risky},
        {{"best", "@", "sale", "stock", "--fail-on", "ambiguous"}, EExitCode::Done},
        {{"between", "@", "--from", "sale", "--to", "promotion", "--fail-on", "lost", "--fail-on",
          "multiplied"},
         EExitCode::Done},
        {{"path", "@", "sale", "promotion", "--inner", "--format", "sql", "--fail-on", "lost"},
         EExitCode::Risky},
        {{"path", "@", "sale", "stock", "--fail-on", "loss"}, EExitCode::WrongUsage},
        {{"path", "@", "sale", "stock", "--only", "sale", "--fail-on", "multiplied", "--format",
          "sql"},
         EExitCode::NegativeResult},
    };
    for (Case entry : cases) {
        entry.arguments.emplace_back("--quiet");
        const ToolRun run = RunWith(entry.arguments);
        EXPECT_EQ(static_cast<int>(run.code), static_cast<int>(entry.code))
            << testing::PrintToString(entry.arguments) << run.error;
        EXPECT_EQ(run.error.empty(), entry.code != EExitCode::WrongUsage) << run.error;
    }
    const std::string requests = "{\"subjects\": [\"sale\", \"stock\"]}\n"
                                 "{\"subjects\": [\"sale\", \"product\"]}\n";
    const ToolRun batch = RunWith({"batch", "@", "--fail-on", "multiplied"}, requests);
    EXPECT_EQ(batch.code, EExitCode::Risky);
    EXPECT_THAT(batch.error, HasSubstr("multiplied: 1, lost: 1, median"));
    EXPECT_EQ(RunWith({"batch", "@", "--fail-on", "ambiguous", "--quiet"}, requests).code,
              EExitCode::Done);
    EXPECT_THAT(RunWith({"batch", "@", "--quiet"}, requests).error, IsEmpty());
}

TEST_F(RiskCommands, PagesTellTheRisksOfEachPathAndCountAsTheTextDoes)
{
    const ToolModel model = MakeModel(std::string(kTwoWays) + "B(k)");
    Question question = Connect({"A", "B"});
    question.selector.kind = ESelector::First;
    const std::string page = WriteAs("html", model, question);
    EXPECT_THAT(page, HasSubstr("<h2>Alternative 2</h2>"));
    EXPECT_THAT(page, Not(HasSubstr("<h2>Alternative 1</h2>")));
    EXPECT_THAT(page, HasSubstr("<strong>Multiplied:</strong> A and B meet at Z"));
    EXPECT_THAT(page, HasSubstr("<strong>Ambiguous:</strong> 2 paths"));
}

} // namespace
