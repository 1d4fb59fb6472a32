#include "Engine/Model/ModelGateway.h"

#include "AQE_I_QuerySpecJoin.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Tests/Support/ModelText.h"
#include "amdi_filter.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qe::model {
namespace {

using qe::test::ModelText;

/// Fetches an object by its name as one of the interfaces.
template <typename Interface>
const Interface& Fetch(const ModelText& model, std::string_view name)
{
    const auto* object = dynamic_cast<Interface*>(model.GetGateway().GetObject(model.Id(name)));
    if (object == nullptr)
        throw std::runtime_error("not of that interface: " + std::string(name));
    EXPECT_EQ(object->GetId(), model.Id(name));
    EXPECT_EQ(object->GetName(), I18NString(name));
    EXPECT_EQ(object->GetParentId(), model.GetModel()->Find(model.Id(name))->parent);
    return *object;
}

/// What every kind of join tells, as text.
template <typename Join>
std::string Describe(const ModelText& model, const Join& join)
{
    const auto range = [](const auto& cardinality) {
        return std::to_string(cardinality.minimum) + ".." + std::to_string(cardinality.maximum);
    };
    return model.Name(join.GetLeftId()) + ' ' + range(join.GetLeftCardinality()) + ' ' +
           model.Name(join.GetRightId()) + ' ' + range(join.GetRightCardinality()) + ' ' +
           join.GetExpressionText();
}

TEST(ModelGatewayTest, ShowsEveryClassThroughItsInterface)
{
    const ModelText model(R"(
        folder Facts
        A >o-o B : r on a = b
        A >o=o B : q
        A >o~o B : s on c
        C ->3 A; t -> r : C, B
        filter f on x; query filter g on y
        A(i)
    )");
    EXPECT_EQ(Describe(model, Fetch<amdi_relationship>(model, "r")), "A 10..12 B 10..11 a = b");
    EXPECT_EQ(Describe(model, Fetch<amdi_relationship>(model, "q")), "A 10..12 B 10..11 ");
    EXPECT_EQ(Describe(model, Fetch<AQE_I_QuerySpecJoin>(model, "s")), "A 1..3 B 1..2 c");
    const auto& shortcut = Fetch<amdi_shortcut>(model, "C");
    EXPECT_EQ(model.Name(shortcut.GetReferencedId()), "A");
    EXPECT_EQ(shortcut.GetShortcutKind(), 3);
    const auto& relationshipShortcut = Fetch<amdi_relationshipShortcut>(model, "t");
    EXPECT_EQ(model.Names({relationshipShortcut.GetReferencedId(), relationshipShortcut.GetLeftId(),
                           relationshipShortcut.GetRightId()}),
              "r, C, B");
    EXPECT_STREQ(Fetch<amdi_filter>(model, "f").GetExpressionText(), "x");
    EXPECT_STREQ(Fetch<amdi_specFilter>(model, "g").GetExpressionText(), "y");
    EXPECT_EQ(model.Name(Fetch<amdi_object>(model, "A").GetParentId()), "Facts");
    EXPECT_EQ(model.GetGateway().GetObject(amd_id(0, IdClassQuerySubject, 9)), nullptr);
    EXPECT_EQ(model.GetGateway().GetQualifierId(model.Id("A.i")), model.Id("Model"));
    EXPECT_EQ(model.GetGateway().GetQualifierId(model.Id("Model")), amd_id());
}

TEST(ModelGatewayTest, GivesDisplayNamesAndTheNearestLocale)
{
    ModelBuilder builder("en");
    const amd_id space = builder.AddNamespace(Top, "S", {.displayName = "Sales"});
    const amd_id folder = builder.AddFolder(space, "F", {.locale = "de"});
    const amd_id subject = builder.AddQuerySubject(folder, "A");
    const amd_id item = builder.AddItem(subject, "I", {.locale = "fr"});
    ModelGateway gateway(builder.Build());

    std::string text;
    for (const amd_id& id : {space, folder, subject, item, amd_id()}) {
        I18NString name("missing");
        if (gateway.GetObject(id) != nullptr)
            gateway.GetObject(id)->GetDisplayName(name);
        text += name.ToStdString() + ' ' + gateway.GetLocale(id).GetTag().ToStdString() + '\n';
    }
    EXPECT_EQ(text, "Sales en\nF de\nA de\nI fr\nmissing en\n");
}

TEST(ModelGatewayTest, ResolvesTheNamesOfReferences)
{
    ModelBuilder builder;
    builder.AddNamespace("S");
    builder.AddFolder("S", "T");
    builder.AddNamespace("T");
    builder.AddItem(builder.AddQuerySubject("T", "A"), "I");
    builder.AddItem(builder.AddQuerySubject(Top, "S"), "A");
    builder.AddItem(builder.AddQuerySubject("S", "A"), "J");
    builder.AddShortcut("S", "C", {"T.A"});
    builder.AddShortcut("S", "D", {"C"});
    builder.AddFilter("S", "F", "x");
    ModelGateway gateway(builder.Build());

    struct Row
    {
        std::vector<I18NString> names;
        const char* found;
    };
    const Row rows[] = {
        {{"T", "A", "I"}, "101:1 100:1"},
        {{"S", "C", "I"}, "101:1 109:1"},
        {{"S", "D", "I"}, "101:1 109:2"},
        {{"S", "A", "J"}, "101:3 100:3"},
        {{"S", "A", "I"}, "none"},
        {{"s", "A", "J"}, "none"},
        {{"S", "A", "j"}, "none"},
        // What lies outside all namespaces comes before what the namespace of that name holds.
        {{"S", "A"}, "101:2 100:2"},
        {{"S", "C"}, "109:1 109:1"},
        {{"S", "F"}, "114:1 0:0"},
        {{"S", "T", "A"}, "none"},
        {{"S"}, "none"},
        {{}, "none"},
        {{"S", "T", "A", "I"}, "none"},
    };
    for (const Row& row : rows) {
        const auto found = gateway.ResolveReference(row.names);
        EXPECT_EQ(found ? ToText(found->referencedId) + ' ' + ToText(found->querySubjectId)
                        : "none",
                  row.found);
    }
}

TEST(ModelGatewayTest, ListsInIdOrder)
{
    const ModelText model(
        "B#5(x, y), A#2(z); A - B : r; C -> A; A = B : q; A ~ B : s; t -> r : A, C");
    const Model& data = *model.GetModel();
    const auto names = [&](std::span<const amd_id> ids) {
        return model.Names({ids.begin(), ids.end()});
    };
    EXPECT_EQ(names(data.GetSubjects()), "A, B, C");
    EXPECT_EQ(names(data.GetJoins()), "r, t, q, s");
    EXPECT_EQ(names(data.GetItems(model.Id("B"))), "x, y");
    EXPECT_EQ(names(data.GetItems(model.Id("C"))), "z");
    EXPECT_EQ(names(data.GetItems(model.Id("r"))), "");
    EXPECT_EQ(names(data.GetChildren(model.Id("Model"))), "A, B, r, C, t, q");
    EXPECT_EQ(names(data.GetChildren({})), "s, Model");
    EXPECT_EQ(names(data.GetIds(IdClassQueryItem)), "x, y, z");
    EXPECT_EQ(names(data.GetIds(IdClassFilter)), "");
}

TEST(ModelGatewayTest, SharesOneModelBetweenThreads)
{
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("S");
    for (int i = 0; i < 200; ++i)
        builder.AddItem(builder.AddQuerySubject(space, "A" + std::to_string(i)), "I");
    ModelGateway gateway(builder.Build());
    std::atomic<int> wrong = 0;
    const auto read = [&] {
        for (int i = 0; i < 200; ++i) {
            const auto found = gateway.ResolveReference({"S", "A" + std::to_string(i), "I"});
            const amd_id expected(0, IdClassQueryItem, i + 1);
            if (!found || found->referencedId != expected ||
                gateway.GetObject(expected)->GetParentId() != found->querySubjectId)
                ++wrong;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(read);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace qe::model
