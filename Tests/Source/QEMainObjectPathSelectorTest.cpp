#include "MainObjectPathSelector.h"

#include "AQE_I_JoinPathDescriptor.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelGateway.h"
#include "ORVAssertError.h"
#include "PathSelection.h"
#include "Rules/Cardinality.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

#include <memory>

namespace {

using qe::test::CountingGateway;
using qe::test::ModelText;
using testing::ElementsAre;
using Ids = std::vector<amd_id>;
using Options = MainObjectPathSelector::Options;

constexpr Options kAnyEnd{false, true};
constexpr Options kNoOptional{true, true};
constexpr Options kSearch{false, false};
constexpr Options kSearchNoOptional{true, false};

struct Row
{
    const char* title;
    const char* model;
    const char* subjects;
    Options options;
    const char* path;
    /// "main object: one-to-one objects: path objects", empty when the path has no main object.
    const char* result;
};

const Row kRows[] = {
    {"Leads to the one side, whichever subject comes first", "A >- B : ab", "B, A", kAnyEnd, "ab",
     "A: A: A, B"},
    {"Refuses a fan-out from every subject", "A >- M : am; B >- M : bm", "A, B", kAnyEnd, "am, bm",
     ""},
    {"Reaches every subject", "A >- B : ab; B >- C : bc", "A, C", kAnyEnd, "ab", ""},
    {"Takes the first of several", "A - B : ab", "B, A", kAnyEnd, "ab", "B: B, A: A, B"},
    {"Gathers over one-to-one joins only",
     "A - B : ab; B - C : bc; A >- D : ad; D - E : de; A -o F : af", "A, C", kAnyEnd,
     "ad, ab, bc, de, af", "A: A, B, C: A, B, C, D, E, F"},
    {"Follows an optional end", "A >o- B : ab", "A, B", kAnyEnd, "ab", "A: A: A, B"},
    {"Refuses an optional end at the main object", "A >o- B : ab", "A, B", kNoOptional, "ab", ""},
    {"Refuses to leave through an optional end", "A >- B : ab; B >o- C : bc", "A, C", kNoOptional,
     "ab, bc", ""},
    {"Allows an optional end where it arrives", "A >-o B : ab", "A, B", kNoOptional, "ab",
     "A: A: A, B"},
    {"Finds one that is optional", "A >o- B : ab", "A, B", kSearch, "ab", "A: A: A, B"},
    {"Refuses an optional end at what it finds", "A >o- B : ab", "A, B", kSearchNoOptional, "ab",
     ""},
    {"Refuses to leave what it finds through an optional end", "A >- B : ab; B >o- C : bc", "A, C",
     kSearchNoOptional, "ab, bc", ""},
    {"Refuses an optional end at a join that it does not walk over", "A - B : one; A o- B : two",
     "A, B", kNoOptional, "one, two", "B: B, A: A, B"},
    {"Refuses it of what it finds as well", "A - B : one; A o- B : two", "A, B", kSearchNoOptional,
     "one, two", "B: B, A: A, B"},
    {"Stops at a many-to-many join and judges what it saw before", "A >-< B : ab; B -< C : bc",
     "A, C", kAnyEnd, "ab, bc", "A: A: A, B, C"},
    {"Minds a fan-out before a many-to-many join only", "A -< B : ab; B >-< C : bc", "A, C",
     kAnyEnd, "ab, bc", "C: C: A, B, C"},
    {"Searches the side that fans out most", "A >- M : am; M >- B : mb", "M, B", kSearch, "mb, am",
     "A: A: A, M, B"},
    {"Prefers a subject among equals", "X - A : xa; A >- B : ab", "A, B", kSearch, "xa, ab",
     "A: A, X: X, A, B"},
    {"Takes the least id among equals that are no subjects", "X - Y : xy; B -< Y : by; B - W : bw",
     "B, W", kSearch, "bw, by, xy", "X: X, Y: X, Y, B, W"},
    {"Searches in vain over a many-to-many join", "A >-< B : ab", "A, B", kSearch, "ab", ""},
    {"Scores a sibling on from the one before", "M >- P : mp; M >- R : mr; M -< A : ma", "A, M",
     kSearch, "mp, mr, ma", ""},
    {"Scores the same siblings in another order", "M >- P : mp; M >- R : mr; M -< A : ma", "A, M",
     kSearch, "ma, mp, mr", "A: A: M, P, R, A"},
    {"Unfolds a cycle", "A >- B : ab; B >- C : bc; A >- C : ac", "A, C", kAnyEnd, "ab, bc, ac", ""},
    {"Unfolds a cycle of one-to-one joins", "A - B : ab; B - C : bc; C - A : ca", "A, C", kAnyEnd,
     "ab, bc, ca", "A: A, B, C: A, B, C"},
    {"Takes the first of two joins between the same ends", "A - B : one; A >- B : ab", "A, B",
     kAnyEnd, "one, ab", "A: A, B: A, B"},
    {"Needs a path", "A >- B : ab", "A, B", kSearch, "", ""},
    {"Needs subjects", "A >- B : ab", "", kAnyEnd, "ab", ""},
    {"Takes a single subject as it is", "A >- B : ab", "B", kAnyEnd, "", "B: B: "},
};

std::string Describe(const ModelText& model, const MainObjectPathSelector& selector)
{
    if (!selector.HasMainObject())
        return "";
    return model.Name(selector.GetMainObject()) + ": " +
           model.Names(selector.GetOneToOneObjects()) + ": " +
           model.Names(selector.GetPathObjects());
}

TEST(MainObject, IsWhereEveryJoinLeadsToTheOneSide)
{
    for (const Row& row : kRows) {
        const ModelText model(row.model);
        MainObjectPathSelector selector(&model.GetGateway(), nullptr, model.Ids(row.subjects),
                                        row.options);
        EXPECT_EQ(selector.SelectAlternative({model.Ids(row.path)}), 0U);
        EXPECT_EQ(Describe(model, selector), row.result) << row.title;
    }
}

TEST(MainObject, GoesByBothBoundsOfACardinality)
{
    const ModelText model("A - B : ab");
    const struct
    {
        qe::CardinalityRange left;
        qe::CardinalityRange right;
        Options options;
        const char* result;
    } rows[] = {
        {{12, 11}, {11, 11}, kAnyEnd, "A: A: A, B"},
        {{11, 12}, {11, 11}, kAnyEnd, "A: A: A, B"},
        {{12, 10}, {12, 10}, kAnyEnd, "B: B: A, B"}, // many-to-many: nothing was seen before
        {{11, 10}, {11, 11}, kAnyEnd, "B: B: A, B"},
        {{11, 11}, {11, 10}, kNoOptional, "A: A: A, B"},
        {{11, 11}, {10, 11}, kNoOptional, "A: A: A, B"},
        {{10, 11}, {11, 10}, kNoOptional, ""},
        {{11, 11}, {11, 11}, kNoOptional, "B: B, A: A, B"},
        {{12, 11}, {11, 11}, kSearch, "A: A: A, B"},
    };
    for (const auto& row : rows) {
        AQE_RequestContext context;
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        AQE_I_Refiner::QEjoinInfo info;
        ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&model.GetGateway(), nullptr, model.Id("ab"), info));
        info.leftCardinality = row.left;
        info.rightCardinality = row.right;
        context.GetJoinCache()->CacheJoinInfo(info.joinId, info);
        MainObjectPathSelector selector(&model.GetGateway(), &context, model.Ids("B, A"),
                                        row.options);
        selector.SelectAlternative({model.Ids("ab")});
        EXPECT_EQ(Describe(model, selector), row.result) << &row - rows;
    }
}

TEST(MainObject, ChoosesTheFirstPathThatHasOne)
{
    const ModelText model("A >- B : ab; A -< B : ba; A - B : one; A >- C : ac");
    const std::vector<Ids> paths{model.Ids("ac"), model.Ids("ab, ac"), model.Ids("ba"),
                                 model.Ids("one")};
    std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>> descriptors;
    for (const Ids& path : paths)
        descriptors.emplace_back(new AQE_JoinPathDescriptor(path, 0, 0));

    MainObjectPathSelector selector(&model.GetGateway(), nullptr, model.Ids("B, A"), kAnyEnd);
    EXPECT_EQ(selector.SelectPath({}), 0U);
    EXPECT_EQ(selector.SelectPath({descriptors[0]}), 0U);
    EXPECT_FALSE(selector.HasMainObject());
    EXPECT_EQ(selector.SelectPath(descriptors), 1U);
    EXPECT_EQ(Describe(model, selector), "A: A: A, B, C");
    EXPECT_EQ(selector.SelectPath({descriptors[0], descriptors[0], descriptors[2]}), 2U);
    EXPECT_EQ(selector.SelectAlternative({paths[0], paths[3]}), 1U);
    EXPECT_EQ(Describe(model, selector), "B: A, B: A, B, C, A, B, A, B") << "results grow";

    const amd_id ids[] = {{0, 1, 1}, {0, 1, 2}, {0, 1, 3}};
    selector.AddTriple(ids[0], ids[1], ids[2], false);
    selector.AddTriple(ids[1], ids[1], ids[2], true);
    selector.AddTriple(ids[0], ids[1], ids[2], false);
    EXPECT_THAT(selector.GetTriples(), ElementsAre(ElementsAre(ids[2], ids[1], ids[1]),
                                                   ElementsAre(ids[2], ids[1], ids[0])));
}

TEST(MainObject, IsNotSoughtBehindASubjectWithoutAnId)
{
    const ModelText model("A >- B : ab");
    for (const Options& options : {kAnyEnd, kNoOptional}) {
        MainObjectPathSelector first(&model.GetGateway(), nullptr, {model.Id("A"), {}}, options);
        first.SelectAlternative({model.Ids("ab")});
        EXPECT_FALSE(first.HasMainObject()) << "the path does not reach every subject";
        MainObjectPathSelector last(&model.GetGateway(), nullptr, {{}, model.Id("A")}, options);
        last.SelectAlternative({model.Ids("ab")});
        EXPECT_FALSE(last.HasMainObject());
    }
}

TEST(MainObject, LeavesUnreadableJoinsOut)
{
    const ModelText model("A >- B : ab; B >- C : bc; A >- C : ac");
    CountingGateway gateway(model.GetGateway());
    gateway.Hide(model.Id("bc"));
    MainObjectPathSelector selector(&gateway, nullptr, model.Ids("A, C"), kAnyEnd);
    selector.SelectAlternative({model.Ids("bc, ab, ac")});
    EXPECT_EQ(Describe(model, selector), "A: A: A, B, C");
    MainObjectPathSelector searching(&gateway, nullptr, model.Ids("A, C"), kSearch);
    searching.SelectAlternative({model.Ids("bc, ab, ac")});
    EXPECT_FALSE(searching.HasMainObject()) << "the search starts at the first join";
    MainObjectPathSelector blind(nullptr, nullptr, model.Ids("A, C"), kAnyEnd);
    blind.SelectAlternative({model.Ids("ab, ac")});
    EXPECT_FALSE(blind.HasMainObject());
}

/// Returns each join once.
class ForgetfulGateway : public CountingGateway
{
public:
    using CountingGateway::CountingGateway;
    amdi_object* GetObject(const amd_id& id) override
    {
        amdi_object* const object = CountingGateway::GetObject(id);
        if (id.classCode == IdClassRelationship)
            Hide(id);
        return object;
    }
};

TEST(MainObject, FailsWhenAJoinVanishesUnderIt)
{
    const ModelText model("A >- B : ab");
    ForgetfulGateway gateway(model.GetGateway());
    MainObjectPathSelector selector(&gateway, nullptr, model.Ids("A, B"), kAnyEnd);
    try {
        selector.SelectAlternative({model.Ids("ab")});
        ADD_FAILURE() << "no exception";
    } catch (const ORVAssertError& error) {
        EXPECT_EQ(error.GetErrorCode(), 0);
        EXPECT_EQ(error.GetAssertedText(), "ORV_ASSERT(false);");
        EXPECT_EQ(error.GetLocation().file, "Source/QEMainObjectPathSelector");
        EXPECT_EQ(error.GetLocation().line, 465);
        EXPECT_EQ(error.GetMacroName(), "ORV_THROW");
    }
}

TEST(MainObject, SearchesBeyondFifteenFanOutsOnEqualTerms)
{
    std::string text;
    std::string path;
    for (int number = 0; number < 20; ++number) {
        const std::string end = std::to_string(number);
        text += 's' + end + " -< s" + std::to_string(number + 1) + " : j" + end + ';';
        path += 'j' + end + ',';
    }
    const ModelText model(text);
    MainObjectPathSelector selector(&model.GetGateway(), nullptr, model.Ids("s0, s20"), kSearch);
    selector.SelectAlternative({model.Ids(path)});
    EXPECT_EQ(model.Name(selector.GetMainObject()), "s20");
}

TEST(MainObject, ScoresLongPathsWithoutOverflow)
{
    constexpr int kLength = 20000;
    qe::model::ModelBuilder builder;
    Ids subjects{builder.AddQuerySubject(qe::model::kTop, "0")};
    Ids path;
    for (int number = 1; number <= kLength; ++number) {
        const amd_id next = builder.AddQuerySubject(qe::model::kTop, std::to_string(number));
        path.push_back(builder.AddRelationship(qe::model::kTop, "j",
                                               {subjects.back(), qe::model::kOneToMany}, {next}));
        subjects.push_back(next);
    }
    qe::model::ModelGateway gateway(builder.Build());
    const Ids ends{subjects.back(), subjects.front()};
    for (const Options& options : {kAnyEnd, kSearch}) {
        MainObjectPathSelector selector(&gateway, nullptr, ends, options);
        selector.SelectAlternative({path});
        EXPECT_EQ(selector.GetMainObject(), ends[1]) << "from the other end the score doubles on";
        EXPECT_EQ(selector.GetPathObjects().size(), std::size_t{kLength} + 1);
    }
}

} // namespace
