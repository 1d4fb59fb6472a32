#include "AQE_Governors.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "MainObjectPathSelector.h"
#include "Tests/Support/CountedAllocation.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <ostream>

namespace {

using qe::test::Countdown;
using qe::test::CountedAllocation;
using qe::test::CountingGateway;
using qe::test::ModelText;
using qe::test::ToldFailure;
using Ids = std::vector<amd_id>;

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
    int weight = 0;
    Ids ids;
    Ids ends;
    std::vector<Ids> paths;
    std::vector<std::pair<amd_id, amd_id>> pairs;

    friend bool operator==(const Answer&, const Answer&) = default;
};

/// One request with all that belongs to it.
struct Request
{
    explicit Request(const ModelText& modelText)
        : model(modelText),
          gateway(modelText.GetGateway()),
          nodes(model.Subjects()),
          joins(model.Joins()),
          subjects(model.Ids("Orders, Region, Date")),
          others(model.Ids("Region, Ordered, Shipped")),
          favoured(model.Ids("ob")),
          required(model.Ids("cr"))
    {
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        refiner = AQE_I_Refiner::Create(&gateway, &selector, &governors, &context, true, true);
        RenewShortcuts();
    }

    /// Shortcut information whose building failed stays as it is, so that a host makes a new one.
    void RenewShortcuts()
    {
        shortcuts.reset(AQE_I_QuerySubjectShortcutInfo::Create(&gateway, &governors, &context));
        refiner->SetShortcutInfo(shortcuts.get());
    }

    const ModelText& model;
    CountingGateway gateway;
    Ids nodes, joins, subjects, others, favoured, required;
    AQE_Governors governors{1, 0};
    AQE_RequestContext context;
    FailingSelector selector;
    AUT_RefPtr<AQE_I_Refiner> refiner;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcuts;
};

struct Operation
{
    const char* name;
    void (*run)(Request&, Answer&);

    friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }
};

const Operation kOperations[] = {
    {"ComputeJoinPath",
     [](Request& r, Answer& a) {
         r.refiner->ComputeJoinPath(r.subjects, r.favoured, {}, r.nodes, r.joins, r.others, a.ids);
     }},
    {"GetJoinedQuerySubjects",
     [](Request& r, Answer& a) {
         r.refiner->GetJoinedQuerySubjects(r.others, r.nodes, r.joins, a.ids);
     }},
    {"ComputeJoinPathBetween",
     [](Request& r, Answer& a) {
         r.refiner->ComputeJoinPathBetween(r.subjects, {}, r.others, {}, r.favoured, {}, r.nodes,
                                           r.joins, a.ids, a.weight, a.ends);
     }},
    {"ComputeBestJoinPaths",
     [](Request& r, Answer& a) {
         a.result = r.refiner->ComputeBestJoinPaths(r.subjects, {}, r.required, r.nodes, r.joins,
                                                    a.paths, r.favoured, r.others);
     }},
    {"ComputeBestJoinPathsBetween",
     [](Request& r, Answer& a) {
         r.refiner->ComputeBestJoinPathsBetween(r.subjects, {}, r.others, {}, r.favoured, {},
                                                r.nodes, r.joins, a.paths, a.weight, a.pairs);
     }},
    {"GetJoinTreeJoins",
     [](Request& r, Answer& a) {
         a.result = r.refiner->GetJoinTreeJoins(&r.gateway, r.subjects, {}, r.required, r.nodes,
                                                r.joins, &r.governors, &r.context, nullptr, a.ids);
     }},
    {"SelectByMainObject",
     [](Request& r, Answer& a) {
         MainObjectPathSelector selector(&r.gateway, &r.context, r.model.Ids("Region, Orders"),
                                         {.checkOptional = true, .subjectsAreCandidates = false});
         selector.SelectAlternative({r.required, r.model.Ids("oc, cr")});
         a.result = selector.HasMainObject();
         a.ids = selector.GetPathObjects();
     }},
};

enum class ESource
{
    Gateway,
    Selector,
    Settings,
    Memory
};

/// Runs each operation in one of the processes of the two algorithms.
class Faults : public testing::TestWithParam<std::tuple<Operation, int>>
{
protected:
    Faults() : mModel(kModel), mLog(11, [](const qe::LogEntry&) {})
    {
        const int newAlgo = std::get<1>(GetParam());
        qe::SettingsOverride::SetProvider(
            [this, newAlgo](const I18NString&, const I18NString& key) -> std::optional<int> {
                mSettings.Count();
                if (key == "NewAlgo")
                    return newAlgo;
                if (key == "FFJoins")
                    return 2;
                if (key == "AdjustWeightByFolder")
                    return 1;
                return std::nullopt;
            });
    }
    ~Faults() override { qe::SettingsOverride::SetProvider({}); }

    Answer Ask(Request& request) const
    {
        Answer answer;
        std::get<0>(GetParam()).run(request, answer);
        return answer;
    }

    void Arm(Request& request, ESource source, std::size_t n)
    {
        request.gateway.calls.FailAtCall(source == ESource::Gateway ? n : 0);
        request.selector.countdown.FailAtCall(source == ESource::Selector ? n : 0);
        mSettings.FailAtCall(source == ESource::Settings ? n : 0);
        CountedAllocation::FailAtRequest(source == ESource::Memory ? n : 0);
    }

    /// Lets the n-th call of a source fail, and returns whether there was an n-th call.
    template <typename Failure>
    bool FailOnce(ESource source, std::size_t n, const Answer& right)
    {
        Request request(mModel);
        bool hasThrown = false;
        Answer answer;
        Arm(request, source, n);
        try {
            std::get<0>(GetParam()).run(request, answer);
            // Some failures, such as those of a log, do not keep a request from its answer.
            CountedAllocation::FailAtRequest(0);
            EXPECT_EQ(answer, right) << "call " << n;
        } catch (const Failure&) {
            hasThrown = true;
            EXPECT_TRUE(answer.ids.empty() && answer.paths.empty()) << "call " << n;
            EXPECT_TRUE(answer.ends.empty() && answer.pairs.empty()) << "call " << n;
        }
        Arm(request, source, 0);
        request.RenewShortcuts();
        EXPECT_EQ(Ask(request), right) << "after a failure at call " << n;
        return hasThrown;
    }

    template <typename Failure>
    void FailAtEveryCall(ESource source, const Answer& right)
    {
        for (std::size_t n = 1; !HasFailure(); ++n) {
            const std::size_t liveCount = CountedAllocation::GetLiveCount();
            const bool hasThrown = FailOnce<Failure>(source, n, right);
            EXPECT_EQ(CountedAllocation::GetLiveCount(), liveCount) << "leak at call " << n;
            if (!hasThrown && (source != ESource::Memory || !CountedAllocation::HasFailed()))
                break;
        }
    }

    ModelText mModel;
    qe::LogCapture mLog;
    Countdown mSettings;
};

TEST_P(Faults, PassThroughAndLeaveNothingBehind)
{
    // The settings that are kept for the life of the process are read here.
    Request first(mModel);
    const Answer right = Ask(first);
    Request second(mModel);
    EXPECT_EQ(Ask(second), right);
    EXPECT_FALSE(right.ids.empty() && right.paths.empty());

    FailAtEveryCall<ToldFailure>(ESource::Gateway, right);
    FailAtEveryCall<ToldFailure>(ESource::Selector, right);
    FailAtEveryCall<ToldFailure>(ESource::Settings, right);
    FailAtEveryCall<std::bad_alloc>(ESource::Memory, right);
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, Faults,
                         testing::Combine(testing::ValuesIn(kOperations), testing::Values(1, 0)));

} // namespace
