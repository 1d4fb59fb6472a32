#include "Engine/Model/ModelGateway.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Tests/Support/ModelText.h"
#include "amdi_object.h"

#include <gtest/gtest.h>

namespace qe::model {
namespace {

using qe::test::ModelText;

TEST(ModelGatewayTest, ReturnsDisplayNamesAndTheNearestLocale)
{
    ModelBuilder builder("en");
    const amd_id space = builder.AddNamespace(kTop, "S", {.displayName = "Sales"});
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

struct ReferenceCase
{
    std::vector<I18NString> names;
    const char* found;
};

const ReferenceCase kReferenceCases[] = {
    {{"T", "A", "I"}, "101:1 100:1"},
    {{"S", "C", "I"}, "101:1 109:1"},
    {{"S", "D", "I"}, "101:1 109:2"},
    {{"S", "A", "J"}, "101:3 100:3"},
    {{"S", "A", "I"}, "none"},
    {{"s", "A", "J"}, "none"},
    {{"S", "A", "j"}, "none"},
    // What lies outside all namespaces comes before what lies in the namespace of that name.
    {{"S", "A"}, "101:2 100:2"},
    {{"S", "C"}, "109:1 109:1"},
    {{"S", "F"}, "114:1 0:0"},
    {{"S", "T", "A"}, "none"},
    {{"S"}, "none"},
    {{}, "none"},
    {{"S", "T", "A", "I"}, "none"},
};
TEST(ModelGatewayTest, ResolvesTheNamesOfReferences)
{
    ModelBuilder builder;
    builder.AddNamespace("S");
    builder.AddFolder("S", "T");
    builder.AddNamespace("T");
    builder.AddItem(builder.AddQuerySubject("T", "A"), "I");
    builder.AddItem(builder.AddQuerySubject(kTop, "S"), "A");
    builder.AddItem(builder.AddQuerySubject("S", "A"), "J");
    builder.AddShortcut("S", "C", {"T.A"});
    builder.AddShortcut("S", "D", {"C"});
    builder.AddFilter("S", "F", "x");
    ModelGateway gateway(builder.Build());

    for (const ReferenceCase& row : kReferenceCases) {
        const auto found = gateway.ResolveReference(row.names);
        EXPECT_EQ(found ? ToText(found->referencedId) + ' ' + ToText(found->querySubjectId)
                        : "none",
                  row.found);
    }
}

TEST(ModelGatewayTest, QualifiesWhatLiesOutsideAllNamespacesByANamelessRoot)
{
    const ModelText model("A(I); namespace; folder F; B(I); namespace N; folder F; C(I); D -> C");
    ModelGateway& gateway = model.GetGateway();
    std::string names;
    for (const char* name : {"A", "A.I", "B", "B.I", "C", "D", "Model"}) {
        const amdi_object* const qualifier =
            gateway.GetObject(gateway.GetQualifierId(model.Id(name)));
        ASSERT_NE(qualifier, nullptr) << name;
        names += '[' + qualifier->GetName().ToStdString() + ']';
    }
    EXPECT_EQ(names, "[Model][Model][][][N][N][]");
    EXPECT_EQ(gateway.GetQualifierId({0, IdClassQuerySubject, 99}), amd_id());
    EXPECT_EQ(gateway.GetObject(amd_id()), nullptr) << "parents of what lies at the top";
    EXPECT_EQ(model.GetModel()->Find(kRootId), nullptr) << "the root is no object of the model";
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

} // namespace
} // namespace qe::model
