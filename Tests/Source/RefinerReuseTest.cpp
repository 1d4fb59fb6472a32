// One operation goes on with the candidates of the one before it. No answer may show that.

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Tests/Source/RefinerRequest.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using qe::test::Request;
using Ids = std::vector<amd_id>;

/// Several ways to everything, two of them over shortcuts.
constexpr const char* kModel = R"(
    Orders >- Customer : oc; Orders >- Store : os; Orders >- Date : od; Customer >- Region : cr
    Store >- Region : sr; Region >- Zone : rz; Store >= Zone : sz; Customer >- Date : cd
    folder Roles
    Home -> Region; Shipped -> Date; Customer >- Home : ch; Orders >- Shipped : oh
)";

struct Question
{
    std::string subjects;
    std::string favoured{};
    std::string required{};
    std::string avoided{};
    std::string favouredSubjects{};
    /// What is left out of the nodes and of the joins.
    std::string without{};
};

const Question kOverShortcut{.subjects = "Home, Zone"};

const std::vector<Question> kQuestions{
    {.subjects = "Orders, Zone"},
    {.subjects = "Orders, Zone", .favoured = "rz, cr"},
    {.subjects = "Orders, Zone", .avoided = "sz, od"},
    {.subjects = "Orders, Region, Date", .favouredSubjects = "Store, Date"},
    {.subjects = "Orders, Region, Date", .favoured = "cd", .required = "sr", .avoided = "cd"},
    {.subjects = "Store, Date", .required = "rz"},
    {.subjects = "Orders, Region", .required = "cr", .without = "cr"},
    {.subjects = "Orders, Region", .without = "cr"},
    {.subjects = "Orders, Region", .required = "rz", .without = "Zone"},
    {.subjects = "Orders, Zone", .without = "Zone"},
    kOverShortcut,
    {.subjects = "Orders, Zone", .without = "sz"},
};

Ids Without(const Request& request, Ids ids, const std::string& left)
{
    for (const amd_id& id : request.model.Ids(left))
        std::erase(ids, id);
    return ids;
}

/// Asks three operations and returns all that they say.
std::string Ask(Request& request, AQE_I_Refiner& refiner, const Question& question)
{
    const auto& model = request.model;
    const Ids nodes = Without(request, model.Subjects(), question.without);
    const Ids joins = Without(request, model.Joins(), question.without);
    const Ids subjects = model.Ids(question.subjects);
    const Ids favoured = model.Ids(question.favoured);
    const Ids required = model.Ids(question.required);
    const Ids avoided = model.Ids(question.avoided);
    std::vector<Ids> paths;
    std::string text =
        refiner.ComputeBestJoinPaths(subjects, favoured, required, nodes, joins, paths, avoided,
                                     model.Ids(question.favouredSubjects))
            ? "connected"
            : "apart";
    Ids joined;
    refiner.GetJoinedQuerySubjects(subjects, nodes, joins, joined);
    paths.push_back(joined);
    int weight = 0;
    std::vector<Ids> between;
    std::vector<AQE_Refiner::EndPair> ends;
    refiner.ComputeBestJoinPathsBetween({subjects.front()}, avoided, {subjects.back()}, {},
                                        favoured, required, nodes, joins, between, weight, ends);
    paths.insert(paths.end(), between.begin(), between.end());
    for (const Ids& path : paths)
        text += "; " + model.Names(path);
    return text + "; " + std::to_string(weight);
}

std::string Ask(Request& request, const Question& question)
{
    return Ask(request, *request.refiner, question);
}

using ShortcutInfo = std::unique_ptr<AQE_I_QuerySubjectShortcutInfo>;

ShortcutInfo SetShortcuts(Request& request, AQE_Governors& governors)
{
    ShortcutInfo info(
        AQE_I_QuerySubjectShortcutInfo::Create(&request.gateway, &governors, &request.context));
    request.refiner->SetShortcutInfo(info.get());
    return info;
}

class KeptCandidates : public testing::TestWithParam<bool>
{
protected:
    /// Returns what is needed for the request to know its shortcuts, where this run wants that.
    ShortcutInfo Prepare(Request& request)
    {
        return GetParam() ? SetShortcuts(request, mGovernors) : nullptr;
    }

    std::string AskAlone(
        const Question& question, const std::function<void(Request&)>& change = [](Request&) {})
    {
        Request request(kModel);
        const ShortcutInfo info = Prepare(request);
        change(request);
        return Ask(request, question);
    }

    AQE_Governors mGovernors{};
};

TEST_P(KeptCandidates, CarryNothingIntoTheNextOperation)
{
    std::vector<std::string> alone;
    for (const Question& question : kQuestions)
        alone.push_back(AskAlone(question));
    for (std::size_t first = 0; first < kQuestions.size(); ++first) {
        for (std::size_t second = 0; second < kQuestions.size(); ++second) {
            Request request(kModel);
            const ShortcutInfo info = Prepare(request);
            EXPECT_EQ(Ask(request, kQuestions[first]), alone[first]) << first;
            EXPECT_EQ(Ask(request, kQuestions[second]), alone[second]) << first << ' ' << second;
        }
    }
}

TEST_P(KeptCandidates, FollowTheJoinCache)
{
    const auto moveJoin = [](Request& request) {
        AQE_I_Refiner::QEjoinInfo info;
        ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&request.gateway, &request.context,
                                               request.model.Id("sz"), info));
        info.leftQuerySubject = request.model.Id("Orders");
        request.context.GetJoinCache()->CacheJoinInfo(info.joinId, info);
    };
    Request request(kModel);
    const ShortcutInfo info = Prepare(request);
    const std::string before = Ask(request, kQuestions[0]);
    moveJoin(request);
    EXPECT_EQ(Ask(request, kQuestions[0]), AskAlone(kQuestions[0], moveJoin));
    EXPECT_NE(Ask(request, kQuestions[0]), before);
}

TEST_P(KeptCandidates, FindJoinsThatCouldNotBeReadBefore)
{
    Request request(kModel);
    request.gateway.Hide(request.model.Id("sz"));
    const ShortcutInfo info = Prepare(request);
    const std::string without = Ask(request, kQuestions[0]);
    // One that fails at the hidden join leaves nothing behind.
    request.gateway.calls.FailAtCall(1);
    EXPECT_THROW(Ask(request, kQuestions[1]), qe::test::ToldFailure);
    EXPECT_EQ(Ask(request, kQuestions[0]), without);

    const std::string with = AskAlone(kQuestions[0]);
    ASSERT_NE(with, without);
    request.gateway.Replace(*request.model.GetModel()->Find(request.model.Id("sz")));
    EXPECT_EQ(Ask(request, kQuestions[0]), with);
}

TEST_P(KeptCandidates, BelongToOneGateway)
{
    Request request(kModel);
    request.gateway.Hide(request.model.Id("sz"));
    const ShortcutInfo info = Prepare(request);
    Ask(request, kQuestions[0]);
    const auto other = AQE_I_Refiner::Create(&request.model.GetGateway(), nullptr, nullptr,
                                             &request.context, false, false);
    other->SetShortcutInfo(info.get());
    const std::string with = AskAlone(kQuestions[0]);
    EXPECT_EQ(Ask(request, *other, kQuestions[0]), with);
    EXPECT_EQ(Ask(request, kQuestions[0]), with) << "it is in the join cache now";
}

INSTANTIATE_TEST_SUITE_P(Shortcuts, KeptCandidates, testing::Bool());

TEST(KeptCandidatesOfTwo, DifferByTheirShortcuts)
{
    // Kept in one folder, they stand for each other under the first rule only.
    constexpr const char* kOneFolder = R"(
        Home -> Region; Office -> Region
        Customer >- Region : cr; Region >- Zone : rz; Customer >- Home : ch; Customer >- Office : co
    )";
    AQE_Governors byTarget{.shortcutGrouping = 0};
    AQE_Governors byFolder{.shortcutGrouping = 1};
    Request apart(kOneFolder);
    const std::string without = Ask(apart, kOverShortcut);
    Request request(kOneFolder);
    const ShortcutInfo others = SetShortcuts(request, byFolder);
    const ShortcutInfo info = SetShortcuts(request, byTarget);
    const std::string with = Ask(request, kOverShortcut);
    ASSERT_NE(with, without);
    for (AQE_I_QuerySubjectShortcutInfo* const next :
         {others.get(), info.get(), static_cast<AQE_I_QuerySubjectShortcutInfo*>(nullptr)}) {
        SCOPED_TRACE(next == info.get() ? "with joins" : "without");
        request.refiner->SetShortcutInfo(next);
        EXPECT_EQ(Ask(request, kOverShortcut), next == info.get() ? with : without);
        request.refiner->SetShortcutInfo(info.get());
        EXPECT_EQ(Ask(request, kOverShortcut), with);
    }
}

/// Adds one join to the graph, whatever its class.
class OneShortcutJoin : public AQE_I_QuerySubjectShortcutInfo
{
public:
    explicit OneShortcutJoin(const AQE_I_Refiner::QEjoinInfo& join) : mJoins{join} {}

    void Initialize(const Ids& /*querySubjects*/, const Ids& /*joins*/,
                    const Ids& /*requiredJoins*/) override
    {}
    const std::vector<AQE_I_Refiner::QEjoinInfo>& GetShortcutJoins() override { return mJoins; }
    bool GetJoinInfo(const amd_id& /*joinId*/, AQE_I_Refiner::QEjoinInfo& /*info*/) override
    {
        return false;
    }
    amd_id GetGroupKey(const amd_id& id) override { return id; }
    void Dump(std::ostream& /*out*/) override {}

private:
    std::vector<AQE_I_Refiner::QEjoinInfo> mJoins;
};

TEST(KeptCandidatesOfTwo, DoNotShareTheWeightOfAJoinThatOnlyComesWithShortcuts)
{
    const Question plain{.subjects = "Home, Zone", .without = "sz"};
    const Question favoured{.subjects = "Home, Zone", .favoured = "sz", .without = "sz"};
    const auto ask = [](const std::vector<Question>& questions) {
        Request request(kModel);
        AQE_I_Refiner::QEjoinInfo join;
        join.joinId = request.model.Id("sz");
        join.leftQuerySubject = request.model.Id("Home");
        join.rightQuerySubject = request.model.Id("Zone");
        join.weight = 2;
        OneShortcutJoin info(join);
        request.refiner->SetShortcutInfo(&info);
        std::string last;
        for (const Question& question : questions)
            last = Ask(request, question);
        return last;
    };
    EXPECT_EQ(ask({plain, plain}), ask({plain}));
    EXPECT_EQ(ask({favoured, plain}), ask({plain}));
    EXPECT_EQ(ask({plain, favoured}), ask({favoured}));
}

/// Shortcut information of a host, which may say something else from one operation to the next.
class HostShortcuts : public AQE_I_QuerySubjectShortcutInfo
{
public:
    using Join = AQE_I_Refiner::QEjoinInfo;

    void Initialize(const Ids& /*subjects*/, const Ids& /*joins*/, const Ids& /*required*/) override
    {}
    const std::vector<Join>& GetShortcutJoins() override { return joins; }
    bool GetJoinInfo(const amd_id& id, Join& info) override
    {
        const auto found = std::ranges::find(joins, id, &Join::joinId);
        if (found != joins.end())
            info = *found;
        return found != joins.end();
    }
    amd_id GetGroupKey(const amd_id& id) override { return id; }
    void Dump(std::ostream& /*out*/) override {}

    std::vector<Join> joins;
};

/// Returns lists of synthetic joins, each unlike the first in one respect.
std::vector<std::vector<HostShortcuts::Join>> ListShortcutJoins(const qe::test::ModelText& model)
{
    HostShortcuts::Join join;
    join.joinId = {100, IdClassShortcutJoin, 0};
    join.leftQuerySubject = model.Id("Home");
    join.rightQuerySubject = model.Id("Region");
    join.weight = 1;
    join.leftCardinality = join.rightCardinality = {BMT_I_Association::CardinalityOne,
                                                    BMT_I_Association::CardinalityOne};
    const auto changed = [join](auto change) {
        HostShortcuts::Join other = join;
        change(other);
        return other;
    };
    return {
        {join},
        {changed([](auto& other) { other.joinId.number = 1; })},
        {changed([&](auto& other) { other.leftQuerySubject = model.Id("Shipped"); })},
        {changed([&](auto& other) { other.rightQuerySubject = model.Id("Zone"); })},
        {changed([](auto& other) { other.weight = 5000; })},
        {},
        {join, changed([&](auto& other) {
             other.joinId.number = 1;
             other.leftQuerySubject = model.Id("Orders");
         })},
        // As no checked shortcut information has them: joins of the model, with or without others.
        {join, changed([&](auto& other) { other.joinId = model.Id("cr"); })},
    };
}

TEST(KeptCandidatesOfTwo, DifferByTheSyntheticJoinsOfTheHost)
{
    const std::vector<Question> questions{
        kOverShortcut,
        {.subjects = "Home, Zone", .favoured = "cr", .without = "cr"},
        {.subjects = "Home, Zone", .favoured = "cr", .required = "cr"},
        {.subjects = "Home, Zone", .required = "cr", .without = "cr"},
    };
    const auto lists = ListShortcutJoins(qe::test::ModelText(kModel));
    struct Case
    {
        const Question& question;
        const std::vector<HostShortcuts::Join>& joins;
        std::string alone{};
    };
    std::vector<Case> cases;
    for (const Question& question : questions) {
        for (const auto& list : lists)
            cases.push_back({.question = question, .joins = list});
    }
    for (Case& single : cases) {
        Request request(kModel);
        HostShortcuts shortcuts;
        shortcuts.joins = single.joins;
        request.refiner->SetShortcutInfo(&shortcuts);
        single.alone = Ask(request, single.question);
    }
    for (std::size_t first = 0; first < cases.size(); ++first) {
        for (std::size_t second = 0; second < cases.size(); ++second) {
            Request request(kModel);
            HostShortcuts shortcuts;
            request.refiner->SetShortcutInfo(&shortcuts);
            for (const Case* const asked : {&cases[first], &cases[second]}) {
                shortcuts.joins = asked->joins;
                ASSERT_EQ(Ask(request, asked->question), asked->alone) << first << ' ' << second;
            }
        }
    }
}

/// Does something, once, when a certain object is asked for.
class ActingGateway : public qe::test::CountingGateway
{
public:
    using CountingGateway::CountingGateway;

    amdi_object* GetObject(const amd_id& id) override
    {
        if (id == at && act)
            std::exchange(act, {})();
        return CountingGateway::GetObject(id);
    }

    amd_id at{};
    std::function<void()> act;
};

TEST(KeptCandidatesOfTwo, AreLeftWhenTheHostChangesTheCacheMeanwhile)
{
    const auto moveJoin = [](Request& request) {
        AQE_I_Refiner::QEjoinInfo info;
        ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&request.gateway, &request.context,
                                               request.model.Id("os"), info));
        info.leftQuerySubject = request.model.Id("Zone");
        request.context.GetJoinCache()->CacheJoinInfo(info.joinId, info);
    };
    const std::vector<std::function<void(Request&)>> changes{
        [](Request& request) { request.context.SetJoinCache(nullptr); },
        [](Request& request) { request.context.SetJoinCache(std::make_unique<AQE_JoinCache>()); },
        moveJoin,
        [](Request& /*request*/) {},
    };
    const Question question{.subjects = "Orders, Region, Zone"};
    for (const auto& change : changes) {
        std::vector<std::string> answers;
        // Asked twice, with the change in the middle of the second, and asked after the change.
        for (const bool isMeanwhile : {true, false}) {
            Request request(kModel);
            ActingGateway gateway(request.model.GetGateway());
            gateway.Hide(gateway.at = request.model.Id("sz"));
            const auto refiner =
                AQE_I_Refiner::Create(&gateway, nullptr, nullptr, &request.context, false, false);
            Ask(request, *refiner, question);
            const auto changeIt = [&] { change(request); };
            isMeanwhile ? void(gateway.act = changeIt) : changeIt();
            answers.push_back(Ask(request, *refiner, question));
            EXPECT_FALSE(gateway.act);
        }
        EXPECT_EQ(answers.front(), answers.back());
    }
}

/// Asks another refiner of the request while it chooses.
class AskingSelector : public AQE_I_PathSelector
{
public:
    explicit AskingSelector(std::function<void()> ask) : mAsk(std::move(ask)) {}
    std::uint32_t SelectPath(const qe::test::Descriptors& /*descriptors*/) override
    {
        mAsk();
        return 0;
    }
    std::uint32_t SelectAlternative(const std::vector<Ids>& /*paths*/) override { return 0; }

private:
    std::function<void()> mAsk;
};

TEST(KeptCandidatesOfTwo, AreNotSharedWhileOneIsAtWork)
{
    Request request(kModel);
    const Question& other = kQuestions[2];
    Request apart(kModel);
    const std::string alone = Ask(apart, other);
    int asked = 0;
    AskingSelector selector([&] {
        ++asked;
        EXPECT_EQ(Ask(request, other), alone);
    });
    const auto refiner =
        AQE_I_Refiner::Create(&request.gateway, &selector, nullptr, &request.context, false, false);
    Ids path;
    refiner->ComputeJoinPath(request.model.Ids("Orders, Region, Date"), request.model.Ids("od"), {},
                             request.model.Subjects(), request.model.Joins(), {}, path);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Ask(request, other), alone);
}

} // namespace
