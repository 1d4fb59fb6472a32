#include "Engine/Model/ModelBuilder.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace qe::model {
namespace {

using testing::ElementsAre;

/// A namespace "S" with the query subjects A and B, the item A.I and the relationship "r".
class ModelBuilderTest : public testing::Test
{
protected:
    ModelBuilder mBuilder;
    amd_id mSpace = mBuilder.AddNamespace("S");
    amd_id mA = mBuilder.AddQuerySubject(mSpace, "A");
    amd_id mB = mBuilder.AddQuerySubject(mSpace, "B");
    amd_id mItem = mBuilder.AddItem(mA, "I");
    amd_id mRelationship = mBuilder.AddRelationship(mSpace, "r", {mA, kOneToMany}, {mB});
};

TEST_F(ModelBuilderTest, NumbersEachClassInOrderAroundTakenIds)
{
    mBuilder.Reserve(amd_id(0, IdClassQuerySubject, 4));
    EXPECT_EQ(mBuilder.AddQuerySubject(mSpace, "C"), amd_id(0, IdClassQuerySubject, 3));
    EXPECT_EQ(mBuilder.AddQuerySubject(mSpace, "D"), amd_id(0, IdClassQuerySubject, 5));
    const amd_id given(-3, IdClassQuerySubject, 6);
    EXPECT_EQ(mBuilder.AddQuerySubject(mSpace, "E", {.id = given}), given);
    EXPECT_EQ(mBuilder.AddQuerySubject(mSpace, "F"), amd_id(0, IdClassQuerySubject, 6));
    EXPECT_THAT(mBuilder.Build()->GetIds(IdClassQuerySubject),
                ElementsAre(given, mA, mB, amd_id(0, IdClassQuerySubject, 3),
                            amd_id(0, IdClassQuerySubject, 5), amd_id(0, IdClassQuerySubject, 6)));
}

TEST(ObjectTableTest, FindsIdsHoweverTheirNumbersLie)
{
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    const std::set<amd_id> ids{{0, 100, kLeast}, {0, 100, -1}, {0, 100, 1}, {0, 100, 2},
                               {0, 100, 3},      {0, 101, 4},  {1, 101, 5}, {1, 101, kMost}};
    std::vector<ObjectRecord> records;
    for (auto id = ids.rbegin(); id != ids.rend(); ++id)
        records.push_back({.id = *id});
    const ObjectTable table(std::move(records));
    for (const std::int32_t domain : {-1, 0, 1}) {
        for (const std::int32_t classCode : {99, 100, 101, 102}) {
            for (const std::int32_t number : {kLeast, -1, 0, 1, 2, 3, 4, 5, 6, kMost}) {
                const amd_id id(domain, classCode, number);
                const ObjectRecord* const found = table.Find(id);
                ASSERT_EQ(found != nullptr, ids.count(id) != 0) << ToText(id);
                EXPECT_TRUE(found == nullptr || found->id == id) << ToText(id);
            }
        }
    }
}

TEST_F(ModelBuilderTest, FollowsNamesToObjectsAddedLater)
{
    // "A" alone means the A of the namespace of the object that says it; a shortcut never means
    // itself; holders may be named before they are added.
    const amd_id join = mBuilder.AddRelationship("T.Deep.Deeper", "s", {"A"}, {"S.A"});
    const amd_id item = mBuilder.AddItem("Own.Name", "J");
    mBuilder.AddFolder("T.Deep", "Deeper");
    mBuilder.AddFolder("T", "Deep");
    const amd_id other = mBuilder.AddNamespace("T");
    const amd_id shortcut = mBuilder.AddShortcut(other, "A", {"A"});
    const amd_id named = mBuilder.AddQuerySubject(other, "Own.Name");
    const amd_id relationshipShortcut =
        mBuilder.AddRelationshipShortcut(other, "r", {"S.r", "T.A", "B"});

    const auto model = mBuilder.Build();
    EXPECT_EQ(model->Find(join)->left, shortcut);
    EXPECT_EQ(model->Find(join)->right, mA);
    EXPECT_EQ(model->Find(join)->space, other);
    EXPECT_EQ(model->Find(item)->parent, named);
    EXPECT_EQ(model->Find(item)->space, other);
    EXPECT_EQ(model->GetTarget(shortcut), mA);
    EXPECT_EQ(model->GetTarget(relationshipShortcut), mRelationship);
    EXPECT_EQ(model->Find(relationshipShortcut)->right, mB);
}

TEST_F(ModelBuilderTest, BuildsAgainAfterMoreWasAdded)
{
    const auto first = mBuilder.Build();
    const amd_id wrong = mBuilder.AddFolder("X", "Parent is missing");
    EXPECT_THROW(static_cast<void>(mBuilder.Build()), ModelError);
    mBuilder.AddNamespace("X");
    EXPECT_NE(mBuilder.Build()->Find(wrong), nullptr);
    EXPECT_EQ(first->Find(wrong), nullptr);
}

/// How one mistake on top of the fixture's model is reported. Those that a model file can have too
/// are tested with model files.
struct Refusal
{
    const char* what;
    void (*mistake)(ModelBuilder&);
    EAspect aspect;
    const char* text;
};

const amd_id kSpace(0, IdClassNamespace, 1);
const amd_id kSubjectA(0, IdClassQuerySubject, 1);

const Refusal kRefusals[] = {
    {"id of another class",
     [](ModelBuilder& b) { b.AddFolder(kSpace, "F", {.id = amd_id(0, IdClassFilter, 1)}); },
     EAspect::Id, "folder \"F\" cannot have the id 114:1: its class is 99, its number not 0"},
    {"id without number",
     [](ModelBuilder& b) { b.AddFolder(kSpace, "F", {.id = amd_id(1, IdClassFolder, 0)}); },
     EAspect::Id, "folder \"F\" cannot have the id 99:0: its class is 99, its number not 0"},
    {"id twice", [](ModelBuilder& b) { b.AddQuerySubject(kSpace, "C", {.id = kSubjectA}); },
     EAspect::Id, "query subject \"C\" has the id 100:1 of another object, \"A\""},
    {"folders do not keep subjects of one name apart",
     [](ModelBuilder& b) { b.AddQuerySubject(b.AddFolder(kSpace, "F"), "A"); }, EAspect::Name,
     "query subject \"A\" has the name of another object beside it: query subject 100:1"},
    {"unknown parent", [](ModelBuilder& b) { b.AddQuerySubject("Z", "C"); }, EAspect::Parent,
     "query subject \"C\" has a parent that is not in the model: \"Z\"; nearest: S"},
    {"parent of itself", [](ModelBuilder& b) { b.AddFolder(amd_id(0, IdClassFolder, 1), "F"); },
     EAspect::Parent, "folder \"F\" has a chain of parents that is cyclic"},
    {"query subject as parent", [](ModelBuilder& b) { b.AddFolder(kSubjectA, "F"); },
     EAspect::Parent, "folder \"F\" cannot be held by the query subject \"A\""},
    {"item of a shortcut",
     [](ModelBuilder& b) { b.AddItem(b.AddShortcut(kSpace, "C", {"A"}), "J"); }, EAspect::Parent,
     "item \"J\" cannot be held by the shortcut \"C\""},
    {"item of nothing", [](ModelBuilder& b) { b.AddItem(kTop, "J"); }, EAspect::Parent,
     "item \"J\" has no parent"},
    {"relationship shortcut to itself",
     [](ModelBuilder& b) {
         b.AddRelationshipShortcut(kSpace, "t",
                                   {amd_id(0, IdClassRelationshipShortcut, 1), "A", "B"});
     },
     EAspect::Target, "relationship shortcut \"t\" has a chain of shortcuts that is cyclic"},
    {"relationship shortcut to class 136",
     [](ModelBuilder& b) {
         b.AddRelationship136(kSpace, "q", {"A"}, {"B"});
         b.AddRelationshipShortcut(kSpace, "t", {"q", "A", "B"});
     },
     EAspect::Target,
     "relationship shortcut \"t\" must stand for a relationship of class 102 or a relationship "
     "shortcut, not for 136:1"},
    {"no end", [](ModelBuilder& b) { b.AddSpecJoin("t", {"A"}, {}); }, EAspect::RightEnd,
     "join of the query \"t\" has no right end"},
    {"unknown end, letter case aside",
     [](ModelBuilder& b) { b.AddRelationship(kSpace, "t", {"a"}, {"s.bb"}); }, EAspect::RightEnd,
     "relationship \"t\" has a right end that is not in the model: \"s.bb\"; nearest: S.B"},
    {"end that is a folder",
     [](ModelBuilder& b) { b.AddRelationship136(kSpace, "t", {kSpace}, {"B"}); }, EAspect::LeftEnd,
     "relationship \"t\" has a left end that is neither query subject nor shortcut: namespace "
     "\"S\""},
    {"end that leads to an item",
     [](ModelBuilder& b) {
         b.AddShortcut(kSpace, "C", {"A.I"});
         b.AddSpecJoin("t", {"C"}, {"B"});
     },
     EAspect::LeftEnd,
     "join of the query \"t\" has a left end that does not lead to a query subject: shortcut "
     "\"C\" stands for item \"I\""},
    {"end that can mean two subjects",
     [](ModelBuilder& b) {
         b.AddQuerySubject(b.AddNamespace("T"), "A");
         b.AddSpecJoin("t", {"A"}, {"B"});
     },
     EAspect::LeftEnd,
     "join of the query \"t\" has a left end that can mean several objects: \"A\"; nearest: S.A, "
     "T.A"},
    {"unknown bound",
     [](ModelBuilder& b) {
         b.AddRelationship(kSpace, "t", {"A", {10, 13}}, {"B"});
     },
     EAspect::LeftCardinality,
     "relationship \"t\" has a cardinality at its left end that is not a valid range"},
};

TEST(ModelBuilderRefusalTest, ReportsEachMistake)
{
    for (const Refusal& refusal : kRefusals) {
        SCOPED_TRACE(refusal.what);
        ModelBuilder builder;
        const amd_id space = builder.AddNamespace("S");
        builder.AddItem(builder.AddQuerySubject(space, "A"), "I");
        builder.AddQuerySubject(space, "B");
        refusal.mistake(builder);
        try {
            static_cast<void>(builder.Build());
            ADD_FAILURE() << "was built";
        } catch (const ModelError& error) {
            EXPECT_STREQ(error.what(), refusal.text);
            EXPECT_EQ(error.GetProblems().front().aspect, refusal.aspect);
        }
    }
}

TEST_F(ModelBuilderTest, ReportsAllMistakesInTheOrderOfTheObjects)
{
    mBuilder.AddRelationship(mSpace, "t", {"X"}, {"Y", {3, 4}}, "", {.tag = 7});
    mBuilder.AddShortcut(mSpace, "", {"X"}, {.tag = 8});
    try {
        static_cast<void>(mBuilder.Build());
        FAIL() << "was built";
    } catch (const ModelError& error) {
        std::vector<std::pair<std::int64_t, EAspect>> reported;
        for (const ModelProblem& problem : error.GetProblems())
            reported.emplace_back(problem.tag, problem.aspect);
        EXPECT_THAT(reported,
                    ElementsAre(std::pair(7, EAspect::LeftEnd), std::pair(7, EAspect::RightEnd),
                                std::pair(7, EAspect::RightCardinality),
                                std::pair(8, EAspect::Name), std::pair(8, EAspect::Target)));
        EXPECT_EQ(error.GetProblems().back().object, 6U);
    }
}

TEST_F(ModelBuilderTest, LimitsTheLengthOfChains)
{
    amd_id folder = mSpace;
    amd_id shortcut = mA;
    for (int i = 1; i <= 100; ++i) {
        folder = mBuilder.AddFolder(folder, "F");
        shortcut = mBuilder.AddShortcut(folder, "C" + std::to_string(i), {shortcut});
    }
    EXPECT_EQ(mBuilder.Build()->GetTarget(shortcut), mA);
    mBuilder.AddFolder(folder, "F");
    mBuilder.AddShortcut(folder, "C", {shortcut});
    EXPECT_THROW(static_cast<void>(mBuilder.Build()), ModelError);
}

/// Follows `next` from the object; false when that does not end within the size of the model.
bool ChainEnds(const Model& model, amd_id id, amd_id ObjectRecord::*next)
{
    std::set<amd_id> seen;
    for (const ObjectRecord* record = model.Find(id); record != nullptr;
         record = model.Find(record->*next)) {
        if (!seen.insert(record->id).second)
            return false;
    }
    return true;
}

/// Adds three objects of each class, whose references lead anywhere among them.
void AddRandomObjects(ModelBuilder& builder, std::mt19937& random)
{
    const auto any = [&](std::int32_t classCode) {
        return Reference(amd_id(0, classCode, static_cast<std::int32_t>(1 + random() % 3)));
    };
    const auto subject = [&] {
        return any(random() % 3 != 0 ? IdClassQuerySubject : IdClassShortcut);
    };
    for (int i = 0; i < 3; ++i) {
        const std::string name(1, static_cast<char>('a' + i));
        const auto parent = [&] { return i == 0 || random() % 4 == 0 ? kTop : any(IdClassFolder); };
        builder.AddFolder(random() % 9 == 0 ? any(IdClassFolder) : parent(), name);
        builder.AddQuerySubject(parent(), name);
        builder.AddShortcut(parent(), name + name, {subject()});
        builder.AddRelationship(parent(), name, {subject()}, {subject()});
        builder.AddRelationshipShortcut(
            parent(), name,
            {any(random() % 2 == 0 ? IdClassRelationship : IdClassRelationshipShortcut), subject(),
             subject()});
    }
}

void ExpectSound(const Model& model)
{
    for (const ObjectRecord& record : model.GetRecords()) {
        ASSERT_TRUE(ChainEnds(model, record.id, &ObjectRecord::parent));
        ASSERT_TRUE(ChainEnds(model, record.id, &ObjectRecord::referenced));
        if (IsJoinClass(record.id.classCode)) {
            ASSERT_EQ(model.GetTarget(record.id).classCode, IdClassRelationship);
            ASSERT_EQ(model.GetTarget(record.left).classCode, IdClassQuerySubject);
            ASSERT_EQ(model.GetTarget(record.right).classCode, IdClassQuerySubject);
        }
    }
}

TEST(ModelBuilderPropertyTest, WhatIsBuiltHasNoCyclesAndOnlySoundEnds)
{
    std::mt19937 random(4711);
    int built = 0;
    for (int round = 0; round < 1000; ++round) {
        ModelBuilder builder;
        AddRandomObjects(builder, random);
        try {
            ExpectSound(*builder.Build());
            ++built;
        } catch (const ModelError&) {
            continue;
        }
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(built, 100);
    EXPECT_LT(built, 900);
}

} // namespace
} // namespace qe::model
