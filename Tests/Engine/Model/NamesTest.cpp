#include "Engine/Model/Names.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace qe::model {
namespace {

using testing::ElementsAre;

std::string RandomText(std::mt19937& random, std::string_view letters, std::size_t longest)
{
    std::string text(random() % (longest + 1), ' ');
    for (char& letter : text)
        letter = letters[random() % letters.size()];
    return text;
}

TEST(QualifiedNameTest, SplitsAtDotsOutsideBrackets)
{
    EXPECT_THAT(ParseQualifiedName("Sales.[Order.Lines].Id"),
                ElementsAre("Sales", "Order.Lines", "Id"));
    EXPECT_THAT(ParseQualifiedName("[a]]b].[c"), ElementsAre("a]b", "c"));
    EXPECT_THAT(ParseQualifiedName("a..b."), ElementsAre("a", "", "b", ""));
    EXPECT_THAT(ParseQualifiedName(""), ElementsAre(""));
}

TEST(QualifiedNameTest, ParsingReturnsWhatWasWritten)
{
    std::mt19937 random(1);
    for (int round = 0; round < 5000; ++round) {
        QualifiedName name(1 + random() % 3);
        for (std::string& part : name)
            part = RandomText(random, "ab.[] ", 5);
        EXPECT_EQ(ParseQualifiedName(ToText(name)), name) << ToText(name);
    }
}

/// The distance by its definition: the least over all edits of the first letters.
std::size_t PlainDistance(std::string_view left, std::string_view right)
{
    if (left.empty() || right.empty())
        return left.size() + right.size();
    const std::string_view shortLeft = left.substr(1);
    const std::string_view shortRight = right.substr(1);
    std::size_t best = PlainDistance(shortLeft, shortRight) + (left[0] == right[0] ? 0 : 1);
    best = std::min(best, PlainDistance(shortLeft, right) + 1);
    best = std::min(best, PlainDistance(left, shortRight) + 1);
    if (left.size() > 1 && right.size() > 1 && left[0] == right[1] && left[1] == right[0])
        best = std::min(best, PlainDistance(left.substr(2), right.substr(2)) + 1);
    return best;
}

TEST(NearestNamesTest, DistanceAgreesWithItsDefinitionUpToTheLimit)
{
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        const std::string left = RandomText(random, "abc", 6);
        const std::string right = RandomText(random, "abc", 6);
        const std::size_t limit = random() % 6;
        const std::size_t expected = PlainDistance(left, right);
        const std::size_t actual = EditDistance(left, right, limit);
        if (expected <= limit)
            EXPECT_EQ(actual, expected) << left << ' ' << right << ' ' << limit;
        else
            EXPECT_GT(actual, limit) << left << ' ' << right << ' ' << limit;
    }
}

TEST(NearestNamesTest, OrdersByDistanceThenText)
{
    const std::vector<std::string_view> names{"Order",  "Orders 2", "orders", "Borders",
                                              "Orders", "Invoice",  "Orders"};
    EXPECT_THAT(NearestNames("ORDRES", names), ElementsAre("Orders", "orders", "Borders"));
    EXPECT_THAT(NearestNames("x", names), ElementsAre());
    EXPECT_THAT(NearestNames("\xC3\x84rmel", {"\xC3\xA4rmel"}, 1), ElementsAre("\xC3\xA4rmel"));
}

/// Namespaces Sales and Stock, both with Orders; Returns in Sales.Facts; a shortcut and names
/// that differ in letter case only.
class FindByNameTest : public testing::Test
{
protected:
    static std::shared_ptr<const Model> Make()
    {
        ModelBuilder builder;
        const amd_id sales = builder.AddNamespace("Sales");
        const amd_id stock = builder.AddNamespace("Stock");
        const amd_id facts = builder.AddFolder(sales, "Facts");
        builder.AddItem(builder.AddQuerySubject(sales, "Orders"), "Key");
        builder.AddItem(builder.AddQuerySubject(stock, "Orders"), "Key");
        builder.AddItem(builder.AddQuerySubject(facts, "Returns"), "Order.Key");
        builder.AddQuerySubject(kTop, "returns");
        builder.AddShortcut(facts, "Old", {"Sales.Orders"});
        builder.AddRelationship(sales, "j", {"Sales.Orders"}, {"Old"});
        builder.AddRelationship(sales, "j", {"Sales.Orders"}, {"Returns"});
        return builder.Build();
    }

    std::shared_ptr<const Model> mModel = Make();

    std::string Find(ENameKind nameKind, std::string_view name) const
    {
        std::string text;
        for (const amd_id& id : mModel->FindByName(nameKind, name))
            text += (text.empty() ? "" : ", ") + ToText(mModel->GetQualifiedName(id)) + ' ' +
                    ToText(id);
        return text;
    }
};

TEST_F(FindByNameTest, FindsWhatPeopleWrite)
{
    struct Row
    {
        ENameKind nameKind;
        const char* name;
        const char* found;
    };
    const Row rows[] = {
        {ENameKind::Subject, "Sales.Orders", "Sales.Orders 100:1"},
        {ENameKind::Subject, "[Stock].[Orders]", "Stock.Orders 100:2"},
        {ENameKind::Subject, "Orders", "Sales.Orders 100:1, Stock.Orders 100:2"},
        {ENameKind::Subject, "STOCK.orders", "Stock.Orders 100:2"},
        {ENameKind::Subject, "Returns", "Sales.Returns 100:3"},
        {ENameKind::Subject, "RETURNS", "returns 100:4"},
        {ENameKind::Subject, "Sales.Facts.Returns", "Sales.Returns 100:3"},
        {ENameKind::Subject, "Facts.Returns", "Sales.Returns 100:3"},
        {ENameKind::Subject, "Facts.Sales.Returns", ""},
        {ENameKind::Subject, "Stock.Returns", ""},
        {ENameKind::Subject, "", ""},
        {ENameKind::Item, "Sales.Orders.Key", "Sales.Orders.Key 101:1"},
        {ENameKind::Item, "Sales.Old.key", "Sales.Orders.Key 101:1"},
        {ENameKind::Item, "Orders.Key", "Sales.Orders.Key 101:1, Stock.Orders.Key 101:2"},
        {ENameKind::Item, "returns.[order.key]", "Sales.Returns.[Order.Key] 101:3"},
        {ENameKind::Item, "Order.Key", "Sales.Returns.[Order.Key] 101:3"},
        {ENameKind::Join, "j", "Sales.j 102:1, Sales.j 102:2"},
        {ENameKind::Container, "facts", "Sales.Facts 99:1"},
        {ENameKind::Filter, "j", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Find(row.nameKind, row.name), row.found) << row.name;
}

TEST_F(FindByNameTest, SuggestsTheNearest)
{
    EXPECT_THAT(mModel->SuggestNames(ENameKind::Subject, "Return"),
                ElementsAre("Returns", "returns"));
    EXPECT_THAT(mModel->SuggestNames(ENameKind::Subject, "Stocks.Order"),
                ElementsAre("Stock.Orders"));
    EXPECT_THAT(mModel->SuggestNames(ENameKind::Subject, "Stales.Orders"),
                ElementsAre("Sales.Orders", "Stock.Orders"));
}

} // namespace
} // namespace qe::model
