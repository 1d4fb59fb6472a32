#include "Tests/Support/ModelText.h"

#include "Engine/Model/ModelError.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace qe::test {
namespace {

using qe::model::CardinalityRange;
using qe::model::ObjectRecord;
using qe::model::OneToMany;
using qe::model::OneToOne;
using qe::model::ZeroToMany;
using qe::model::ZeroToOne;

TEST(ModelTextTest, ReadsEveryOperator)
{
    struct Row
    {
        const char* ends;
        std::int32_t classCode;
        CardinalityRange left;
        CardinalityRange right;
    };
    const Row rows[] = {
        {"-", IdClassRelationship, OneToOne, OneToOne},
        {">-", IdClassRelationship, OneToMany, OneToOne},
        {">o-o", IdClassRelationship, ZeroToMany, ZeroToOne},
        {"o-o<", IdClassRelationship, ZeroToOne, ZeroToMany},
        {">-<", IdClassRelationship, OneToMany, OneToMany},
        {"=<", IdClassRelationship136, OneToOne, OneToMany},
        {">o~", IdClassSpecJoin, ZeroToMany, OneToOne},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ends);
        const ModelText model("Big Orders " + std::string(row.ends) + " B : j#5 on a = b");
        const ObjectRecord& join = *model.GetModel()->Find(amd_id(0, row.classCode, 5));
        EXPECT_EQ(model.Names({join.left, join.right, join.id}), "Big Orders, B, j");
        EXPECT_EQ(join.leftCardinality, row.left);
        EXPECT_EQ(join.rightCardinality, row.right);
        EXPECT_EQ(join.text, "a = b");
    }
}

TEST(ModelTextTest, ReadsEveryOtherStatement)
{
    const ModelText model(R"(
        Orders(Key, Amount), Customer   // two query subjects
        folder Facts/Old; Returns >- Customer : rc
        folder; Bill To ->2 Customer; Payer#9 -> Bill To
        rb -> rc : Returns, Bill To
        filter Recent on [a] > 1; query filter Mine on [b] > 2
        namespace Other
        Region
    )");
    EXPECT_EQ(model.Names(model.Subjects()), "Orders, Customer, Returns, Region, Bill To, Payer");
    EXPECT_EQ(model.Names(model.Joins()), "rc, rb");
    EXPECT_EQ(model.Id("Payer"), amd_id(0, IdClassShortcut, 9));

    const auto& data = *model.GetModel();
    const auto parent = [&](const char* name) {
        return model.Name(data.Find(model.Id(name))->parent);
    };
    EXPECT_EQ(parent("Orders.Amount") + '/' + parent("Returns") + '/' + parent("Old") + '/' +
                  parent("Facts") + '/' + parent("Bill To") + '/' + parent("Region"),
              "Orders/Old/Facts/Model/Model/Other");
    EXPECT_EQ(data.Find(model.Id("Bill To"))->shortcutKind, 2);
    EXPECT_EQ(model.Name(data.GetTarget(model.Id("Payer"))), "Customer");
    const ObjectRecord& relationshipShortcut = *data.Find(model.Id("rb"));
    EXPECT_EQ(model.Names({relationshipShortcut.referenced, relationshipShortcut.left,
                           relationshipShortcut.right}),
              "rc, Returns, Bill To");
    EXPECT_EQ(data.Find(model.Id("Recent"))->text + '/' + data.Find(model.Id("Mine"))->text,
              "[a] > 1/[b] > 2");
}

TEST(ModelTextTest, RefusesWhatItCannotRead)
{
    EXPECT_THROW(ModelText("A >- "), std::invalid_argument);
    EXPECT_THROW(ModelText("s -> unknown : A, B"), std::invalid_argument);
    EXPECT_THROW(ModelText("A#1, B#1"), qe::model::ModelError);
    const ModelText model("A - B : j; A - B : j; A - B : j#7");
    EXPECT_THROW(static_cast<void>(model.Id("j")), std::invalid_argument);
    EXPECT_EQ(model.Id("j#7").number, 7);
    EXPECT_EQ(model.Names(model.Ids("A, j#2")), "A, j");
}

} // namespace
} // namespace qe::test
