#include "AQE_Governors.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "MainObjectPathSelector.h"
#include "ORVAssertError.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Source/Reference/RequestDraw.h"
#include "Tests/Support/CountedAllocation.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <utility>

namespace {

using qe::test::Countdown;
using qe::test::CountedAllocation;
using qe::test::CountingGateway;
using qe::test::Draw;
using qe::test::Ids;
using qe::test::Lists;
using qe::test::ModelText;
using qe::test::ToldFailure;

constexpr const char* kModel = R"(
    folder Sales
    Ordered -> Date; Shipped -> Date
    Orders(Key), Customer(Key)
    Orders >- Customer : oc on [Model].[Orders].[Key] = [Model].[Customer].[Key]
    Orders >- Store : os; Customer >- Region : cr; Store >- Region : sr
    Orders >- Ordered : oo; Orders >- Shipped : op
    Buyer -> Customer
    ob -> oc : Orders, Buyer
)";

/// Returns a request of which every operation has much to do.
Draw MakeRichRequest(bool newAlgo)
{
    const ModelText model(kModel);
    Draw draw;
    draw.text = kModel;
    draw.own.governors = AQE_Governors{1, 0};
    draw.useFactTableCount = true;
    draw.useStraightestPath = true;
    draw.newAlgo = newAlgo;
    draw.lists = {Lists{.subjects = model.Ids("Orders, Region, Date"),
                        .secondSet = model.Ids("Region, Ordered, Shipped"),
                        .favouredJoins = model.Ids("ob"),
                        .requiredJoins = {},
                        .avoidedJoins = {},
                        .furtherAvoidedJoins = {},
                        .nodes = model.Subjects(),
                        .joins = model.Joins(),
                        .favouredSubjects = model.Ids("Region, Ordered, Shipped")}};
    return draw;
}

class FailingSelector : public AQE_I_PathSelector
{
public:
    std::uint32_t
    SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors) override
    {
        countdown.Count();
        return static_cast<std::uint32_t>(descriptors.size() - 1);
    }
    std::uint32_t SelectAlternative(const std::vector<Ids>& /*paths*/) override { return 0; }

    Countdown countdown;
};

/// Everything that an operation can give back.
struct Answer
{
    bool result = false;
    int weight = 5;
    Ids ids{amd_id(0, 1, 1)};
    Ids ends{amd_id(0, 1, 2)};
    std::vector<Ids> paths{{amd_id(0, 1, 3)}};
    std::vector<std::pair<amd_id, amd_id>> pairs{{amd_id(0, 1, 4), amd_id(0, 1, 5)}};
    /// What the library said instead.
    std::string refusal{};

    friend bool operator==(const Answer&, const Answer&) = default;
    friend void PrintTo(const Answer& answer, std::ostream* out)
    {
        *out << answer.ids.size() << " ids, " << answer.paths.size() << " paths, "
             << answer.ends.size() << " ends, " << answer.pairs.size() << " pairs, weight "
             << answer.weight << ", result " << answer.result << ' ' << answer.refusal;
    }
};

/// One request with all that belongs to it.
struct Request
{
    Request(const ModelText& modelText, const Draw& draw)
        : gateway(modelText.GetGateway()),
          lists(draw.lists.front()),
          governors(draw.own.governors),
          mainObject(&gateway, &context, lists.subjects,
                     {.checkOptional = true, .subjectsAreCandidates = false})
    {
        for (const amd_id& id : draw.own.hidden)
            gateway.Hide(id);
        if (draw.own.hasCache)
            context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        refiner = AQE_I_Refiner::Create(&gateway, &selector, GetGovernors(), &context,
                                        draw.useFactTableCount, draw.useStraightestPath);
        RenewShortcuts();
    }

    [[nodiscard]] AQE_Governors* GetGovernors() { return governors ? &*governors : nullptr; }

    /// Shortcut information whose building failed stays as it is, so that a host makes a new one.
    void RenewShortcuts()
    {
        shortcuts.reset(
            AQE_I_QuerySubjectShortcutInfo::Create(&gateway, &shortcutGovernors, &context));
        refiner->SetShortcutInfo(shortcuts.get());
    }

    CountingGateway gateway;
    const Lists& lists;
    std::optional<AQE_Governors> governors;
    AQE_Governors shortcutGovernors{1, 0};
    AQE_RequestContext context;
    FailingSelector selector;
    MainObjectPathSelector mainObject;
    AUT_RefPtr<AQE_I_Refiner> refiner;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcuts;
};

/// The main objects found stay from one path to the next; the answer is what one choice adds.
void SelectByMainObject(Request& r, Answer& a)
{
    const std::size_t known = r.mainObject.GetPathObjects().size();
    const std::uint32_t index = r.mainObject.SelectAlternative(
        {r.lists.favouredJoins, r.lists.requiredJoins, r.lists.joins});
    const Ids& objects = r.mainObject.GetPathObjects();
    Ids added(objects.begin() + static_cast<std::ptrdiff_t>(known), objects.end());
    Ids main{r.mainObject.GetMainObject()};
    a.result = r.mainObject.HasMainObject();
    a.weight = static_cast<int>(index);
    a.ids.swap(added);
    a.ends.swap(main);
}

/// What an operation leaves of the caller's outputs when it fails.
enum class EFirst
{
    KeepsAll,
    ClearsIds,
    ClearsPaths,
};

struct Operation
{
    const char* name;
    EFirst first;
    void (*run)(Request&, Answer&);

    friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }
};

const Operation kOperations[] = {
    {"ComputeJoinPath", EFirst::KeepsAll,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         r.refiner->ComputeJoinPath(l.subjects, l.favouredJoins, l.requiredJoins, l.nodes, l.joins,
                                    l.favouredSubjects, a.ids);
     }},
    {"GetJoinedQuerySubjects", EFirst::KeepsAll,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         r.refiner->GetJoinedQuerySubjects(l.subjects, l.nodes, l.joins, a.ids);
     }},
    {"ComputeJoinPathBetween", EFirst::ClearsIds,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         r.refiner->ComputeJoinPathBetween(l.subjects, l.avoidedJoins, l.secondSet,
                                           l.furtherAvoidedJoins, l.favouredJoins, l.requiredJoins,
                                           l.nodes, l.joins, a.ids, a.weight, a.ends);
     }},
    {"ComputeBestJoinPaths", EFirst::KeepsAll,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         a.result =
             r.refiner->ComputeBestJoinPaths(l.subjects, l.favouredJoins, l.requiredJoins, l.nodes,
                                             l.joins, a.paths, l.avoidedJoins, l.favouredSubjects);
     }},
    {"ComputeBestJoinPathsBetween", EFirst::ClearsPaths,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         r.refiner->ComputeBestJoinPathsBetween(
             l.subjects, l.avoidedJoins, l.secondSet, l.furtherAvoidedJoins, l.favouredJoins,
             l.requiredJoins, l.nodes, l.joins, a.paths, a.weight, a.pairs);
     }},
    {"GetJoinTreeJoins", EFirst::KeepsAll,
     [](Request& r, Answer& a) {
         const Lists& l = r.lists;
         a.result = r.refiner->GetJoinTreeJoins(&r.gateway, l.subjects, l.favouredJoins,
                                                l.requiredJoins, l.nodes, l.joins, r.GetGovernors(),
                                                &r.context, &l.avoidedJoins, a.ids);
     }},
    {"SelectByMainObject", EFirst::KeepsAll, SelectByMainObject},
};

enum class ESource
{
    Gateway,
    Selector,
    Settings,
    Log,
    Memory
};

/// Returns how many requests are drawn for each operation.
int GetRoundCount()
{
    constexpr int kDefault = 12;
    const char* const text = std::getenv("QE_FAULT_ROUNDS");
    return text == nullptr ? kDefault : std::stoi(text);
}

/// Runs each operation in one of the processes of the two kinds of candidates.
class Faults : public testing::TestWithParam<std::tuple<Operation, int>>
{
protected:
    Faults() : mCapture(11, [this](const qe::LogEntry&) { mLog.Count(); })
    {
        qe::SettingsOverride::SetProvider(
            [this](const I18NString& section, const I18NString& key) -> std::optional<int> {
                mSettings.Count();
                return FindSetting(section, key);
            });
    }
    ~Faults() override { qe::SettingsOverride::SetProvider({}); }

    /// Lets every call of every source fail in turn.
    void FailEverywhere(const Draw& draw)
    {
        SCOPED_TRACE(draw.text);
        mDraw = &draw;
        const ModelText model(draw.text);
        // The settings that are kept for the life of the process are read here.
        Request first(model, draw);
        const Answer right = Ask(first);
        Request second(model, draw);
        EXPECT_EQ(Ask(second), right);
        FailAtEveryCall<ToldFailure>(model, ESource::Gateway, right);
        FailAtEveryCall<ToldFailure>(model, ESource::Selector, right);
        FailAtEveryCall<ToldFailure>(model, ESource::Settings, right);
        FailAtEveryCall<ToldFailure>(model, ESource::Log, right);
        FailAtEveryCall<std::bad_alloc>(model, ESource::Memory, right);
    }

    [[nodiscard]] std::size_t GetFaultCount() const { return mFaults; }

private:
    [[nodiscard]] std::optional<int> FindSetting(const I18NString& section,
                                                 const I18NString& key) const
    {
        if (key == "NewAlgo")
            return mDraw->newAlgo;
        if (key == "FFJoins")
            return std::get<1>(GetParam());
        if (key == "AdjustWeightByFolder")
            return 1;
        if (section == "QueryEngine" && key == "DoNotApplyCrossProductGovernor")
            return mDraw->isGovernorOff;
        return std::nullopt;
    }

    static void Run(Request& request, Answer& answer)
    {
        try {
            std::get<0>(GetParam()).run(request, answer);
        } catch (const HBNException& refusal) {
            answer.refusal = refusal.what();
        } catch (const ORVAssertError& refusal) {
            answer.refusal = refusal.what();
        }
    }

    static Answer Ask(Request& request)
    {
        Answer answer;
        Run(request, answer);
        return answer;
    }

    void Arm(Request& request, ESource source, std::size_t n)
    {
        request.gateway.calls.FailAtCall(source == ESource::Gateway ? n : 0);
        request.selector.countdown.FailAtCall(source == ESource::Selector ? n : 0);
        mSettings.FailAtCall(source == ESource::Settings ? n : 0);
        mLog.FailAtCall(source == ESource::Log ? n : 0);
        CountedAllocation::FailAtRequest(source == ESource::Memory ? n : 0);
    }

    [[nodiscard]] bool HasFailed(const Request& request, ESource source) const
    {
        return source == ESource::Memory
                   ? CountedAllocation::HasFailed()
                   : request.gateway.calls.HasFailed() || request.selector.countdown.HasFailed() ||
                         mSettings.HasFailed() || mLog.HasFailed();
    }

    static void ExpectUntouched(Request& request, const Answer& answer)
    {
        Answer before;
        before.weight = answer.weight;
        if (std::get<0>(GetParam()).first == EFirst::ClearsIds)
            before.ids.clear();
        if (std::get<0>(GetParam()).first == EFirst::ClearsPaths)
            before.paths.clear();
        EXPECT_EQ(answer, before);
        AQE_JoinCache* const cache = request.context.GetJoinCache();
        EXPECT_TRUE(cache == nullptr || cache->GetAllJoinPaths().empty());
    }

    /// Lets the n-th call of a source fail, and returns whether there was an n-th call.
    template <typename Failure>
    bool FailOnce(const ModelText& model, ESource source, std::size_t n, const Answer& right)
    {
        Request request(model, *mDraw);
        Answer answer;
        bool hasThrown = false;
        Arm(request, source, n);
        try {
            Run(request, answer);
        } catch (const Failure&) {
            hasThrown = true;
        }
        const bool hasFailed = HasFailed(request, source);
        Arm(request, source, 0);
        // Some failures do not keep a request from its answer: a sort can do without memory.
        if (hasThrown)
            ExpectUntouched(request, answer);
        else
            EXPECT_EQ(answer, right);
        request.RenewShortcuts();
        EXPECT_EQ(Ask(request), right) << "afterwards";
        return hasFailed;
    }

    template <typename Failure>
    void FailAtEveryCall(const ModelText& model, ESource source, const Answer& right)
    {
        for (std::size_t n = 1; !HasFailure(); ++n) {
            SCOPED_TRACE("source " + std::to_string(static_cast<int>(source)) + ", call " +
                         std::to_string(n));
            const std::size_t liveCount = CountedAllocation::GetLiveCount();
            const bool hasFailed = FailOnce<Failure>(model, source, n, right);
            EXPECT_EQ(CountedAllocation::GetLiveCount(), liveCount) << "leaked";
            if (!hasFailed)
                break;
            ++mFaults;
        }
    }

    const Draw* mDraw = nullptr;
    Countdown mSettings;
    Countdown mLog;
    qe::LogCapture mCapture;
    std::size_t mFaults = 0;
};

TEST_P(Faults, PassThroughAndLeaveNothingBehind)
{
    if (std::get<1>(GetParam()) != 2 && qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    for (const bool newAlgo : {true, false})
        FailEverywhere(MakeRichRequest(newAlgo));
    EXPECT_GE(GetFaultCount(), 100U);
    std::mt19937 random(20261);
    for (int round = GetRoundCount(); round > 0 && !HasFailure(); --round)
        FailEverywhere(qe::test::DrawRequest(random));
    std::cout << "faults injected: " << GetFaultCount() << '\n';
}

// A host that has no memory for the shortcuts can do without them.
TEST(ShortcutInfo, IsNullWithoutMemory)
{
    CountedAllocation::FailAtRequest(1);
    const AQE_I_QuerySubjectShortcutInfo* const info =
        AQE_I_QuerySubjectShortcutInfo::Create(nullptr, nullptr, nullptr);
    EXPECT_TRUE(CountedAllocation::HasFailed());
    EXPECT_EQ(info, nullptr);
    delete info;
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, Faults,
                         testing::Combine(testing::ValuesIn(kOperations), testing::Values(2, 3)));

} // namespace
