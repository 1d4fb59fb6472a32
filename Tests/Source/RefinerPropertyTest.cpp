#include "AQE_I_Authentication.h"
#include "AQE_JoinCache.h"
#include "Engine/Model/Model.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "ORVAssertError.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Source/RefinerReference.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/RecordingSelector.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <numeric>
#include <random>
#include <sstream>
#include <string_view>

namespace {

using namespace qe::test; // NOLINT(google-build-using-namespace)
using qe::SettingsOverride;

// The last of the virtual operations is done twice, with avoided joins and without.
constexpr std::size_t kOperationCount = 7;

/// The lists of all operations.
struct Lists
{
    Ids subjects;
    Ids secondSet;
    Ids favouredJoins;
    Ids requiredJoins;
    Ids avoidedJoins;
    Ids furtherAvoidedJoins;
    Ids nodes;
    Ids joins;
    Ids favouredSubjects;
};

/// What a host hands over beside the lists: its join cache knows joins by weights of its own, also
/// such as its gateway hides.
struct HostDraw
{
    Ids hidden;
    bool hasCache = true;
    std::map<amd_id, int> weights;
    int command = 1;
    std::optional<AQE_Governors> governors;
};

/// A request and what it is asked, one set of lists after the other.
struct Draw
{
    std::string text;
    HostDraw own;
    /// For the operation that brings its own services.
    HostDraw other;
    AQE_Governors shortcutGovernors;
    RankingSwitches switches;
    std::optional<std::uint32_t> choice;
    bool newAlgo = false;
    bool isGovernorOff = false;
    std::vector<Lists> lists;
    std::vector<bool> hasShortcutInfo;
    /// The operations, in the order in which they are done with each of the lists.
    std::vector<int> operations;
};

/// Draws requests with many ties, parallel joins and shortcuts of shortcuts.
class DrawMaker
{
public:
    explicit DrawMaker(unsigned seed) : mRandom(seed) {}

    Draw Make()
    {
        Draw draw;
        draw.text = MakeText();
        const ModelText model(draw.text);
        draw.newAlgo = Below(2) == 0;
        draw.isGovernorOff = Below(4) == 0;
        draw.own = MakeHost(model);
        draw.other = MakeHost(model);
        draw.shortcutGovernors.shortcutGrouping = Below(2);
        draw.switches = {Below(2) == 0, Below(2) == 0};
        if (Below(4) != 0)
            draw.choice = static_cast<std::uint32_t>(Below(3));
        draw.lists = {MakeLists(model, draw.newAlgo), MakeLists(model, draw.newAlgo)};
        if (Below(2) == 0)
            draw.lists.back() = ChangeOneList(draw.lists.front(), draw.lists.back());
        draw.hasShortcutInfo = {Below(3) != 0, Below(3) != 0};
        draw.operations.resize(kOperationCount);
        std::iota(draw.operations.begin(), draw.operations.end(), 0);
        std::shuffle(draw.operations.begin(), draw.operations.end(), mRandom);
        return draw;
    }

private:
    int Below(int bound) { return std::uniform_int_distribution<>(0, bound - 1)(mRandom); }

    template <typename T>
    T Pick(const std::vector<T>& from)
    {
        return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
    }

    Ids PickSome(const Ids& from, int most)
    {
        Ids picked;
        for (int count = from.empty() ? 0 : Below(most + 1); count > 0; --count)
            picked.push_back(Pick(from));
        return picked;
    }

    Lists ChangeOneList(Lists lists, const Lists& others)
    {
        Ids Lists::*const list = Pick(std::vector<Ids Lists::*>{
            &Lists::favouredJoins, &Lists::requiredJoins, &Lists::joins, &Lists::favouredSubjects});
        lists.*list = others.*list;
        return lists;
    }

    std::string MakeText()
    {
        std::vector<std::string> names{"A", "B"};
        // Sparse ones are large, so that paths are long.
        const bool isSparse = Below(3) == 0;
        for (int count = isSparse ? 8 : Below(5); count > 0; --count)
            names.push_back(std::string(1, static_cast<char>('A' + names.size())));
        std::string text = "A, B; ";
        for (const char* shortcut : {"s -> A", "t -> A", "u -> B", "v -> s", "w ->1 A"}) {
            const bool isOfShortcut = shortcut[0] == 'v';
            if (Below(3) != 0 || (isOfShortcut && !std::count(names.begin(), names.end(), "s")))
                continue;
            text += MakeFolder() + shortcut + "; ";
            names.emplace_back(1, shortcut[0]);
        }
        const std::vector<std::string> operators{">-",  ">-", ">-", "-<",  "-",
                                                 ">-<", ">=", ">~", ">o-o"};
        const int joins = isSparse ? 10 + Below(6) : 2 + Below(10);
        for (int join = 0; join < joins; ++join)
            text += MakeFolder() + Pick(names) + " " + Pick(operators) + " " + Pick(names) +
                    " : j" + std::to_string(join) + "; ";
        // What is joined to a shortcut of its own may be one group with it.
        if (Below(3) == 0)
            text += "A - " + names.back() + " : j88; " + Pick(names) + " - " + names.back() +
                    " : j89; ";
        if (Below(3) == 0)
            text += "A >- B : k on 1 = 1; r -> k : " + Pick(names) + ", " + Pick(names) + "; ";
        return text;
    }

    std::string MakeFolder()
    {
        const std::vector<std::string> folders{"", "", "folder; ", "folder F; ", "folder F/G; "};
        return Pick(folders);
    }

    HostDraw MakeHost(const ModelText& model)
    {
        HostDraw host;
        host.hidden = Below(3) == 0 ? PickSome(model.Joins(), 2) : Ids();
        host.hasCache = Below(5) != 0;
        const std::vector<int> weights{0, 0, 0, 1, 2, 3, 5, 5, 17};
        for (const amd_id& join : model.Joins()) {
            if (const int weight = Pick(weights))
                host.weights[join] = weight;
        }
        host.command = Pick(std::vector<int>{0, 1, 1, 2, 3});
        if (Below(5) != 0)
            host.governors = AQE_Governors{Below(4), Below(2)};
        return host;
    }

    Lists MakeLists(const ModelText& model, bool newAlgo)
    {
        const amd_id unknown(0, IdClassQuerySubject, 99);
        Ids known = model.Joins();
        for (int number = 0; number < 3; ++number)
            known.emplace_back(100, IdClassShortcutJoin, number);
        Lists lists;
        lists.subjects = PickSome(model.Subjects(), model.Subjects().size() > 8 ? 6 : 4);
        lists.secondSet = PickSome(model.Subjects(), 3);
        lists.favouredJoins = PickSome(known, 2);
        lists.requiredJoins = PickSome(known, Below(2) * 2);
        lists.avoidedJoins = PickSome(known, 2);
        lists.furtherAvoidedJoins = PickSome(known, 1);
        lists.favouredSubjects = PickSome(model.Subjects(), Below(2) * 3);
        lists.nodes = model.Subjects();
        lists.joins = model.Joins();
        if (Below(8) == 0)
            lists.subjects.push_back(unknown);
        if (Below(8) == 0)
            lists.joins.push_back(known.back());
        std::shuffle(lists.nodes.begin(), lists.nodes.end(), mRandom);
        std::shuffle(lists.joins.begin(), lists.joins.end(), mRandom);
        // The pairwise growth expects every node that it can come to among the candidates.
        if (newAlgo && Below(3) == 0)
            lists.nodes.pop_back();
        if (Below(3) == 0)
            lists.joins.pop_back();
        if (Below(3) == 0)
            std::erase_if(lists.joins, [&](const amd_id& join) {
                return Contains(lists.requiredJoins, join);
            });
        lists.nodes.push_back(lists.nodes.front());
        if (Below(40) == 0)
            lists.nodes.clear();
        return lists;
    }

    std::mt19937 mRandom;
};

class User : public AQE_I_Authentication
{
public:
    [[nodiscard]] std::vector<I18NString> GetUserClasses() const override { return mClasses; }

    explicit User(const char* name) : mClasses{name} {}

private:
    std::vector<I18NString> mClasses;
};

/// What one host hands over.
struct Host
{
    Host(const ModelText& model, const HostDraw& draw, const char* user)
        : gateway(model.GetGateway()),
          authentication(user),
          context(static_cast<AQE_RequestContext::ECommandType>(draw.command)),
          governors(draw.governors)
    {
        for (qe::model::ObjectRecord record : model.GetModel()->GetRecords()) {
            // Users see other names, and several joins share one.
            record.displayName = "the " + record.name;
            if (record.name[0] == 'j')
                record.name = std::string("j") + (record.name.back() % 2 == 0 ? "0" : "1");
            gateway.Replace(record);
        }
        context.SetAuthentication(&authentication);
        if (draw.hasCache)
            FillCache(draw.weights);
        for (const amd_id& id : draw.hidden)
            gateway.Hide(id);
    }

    void FillCache(const std::map<amd_id, int>& weights)
    {
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        for (const auto& [join, weight] : weights) {
            AQE_I_Refiner::QEjoinInfo info;
            if (AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, join, info)) {
                info.weight = weight;
                context.GetJoinCache()->CacheJoinInfo(join, info);
            }
        }
    }

    [[nodiscard]] AQE_Governors* GetGovernors() { return governors ? &*governors : nullptr; }

    CountingGateway gateway;
    User authentication;
    AQE_RequestContext context;
    std::optional<AQE_Governors> governors;
};

enum class EWho
{
    Library,
    Reference,
};

std::string Text(const Ids& ids)
{
    std::string text;
    for (const amd_id& id : ids)
        text += " " + ToText(id);
    return text;
}

/// One of the two that answer the same request, and what it leaves to be seen.
class Side
{
public:
    Side(const ModelText& model, const Draw& draw, EWho who)
        : mModel(model),
          mDraw(draw),
          mOwn(model, draw.own, "Owner"),
          mOther(model, draw.other, "Other"),
          mShortcutInfo(AQE_I_QuerySubjectShortcutInfo::Create(&mOwn.gateway, &mShortcutGovernors,
                                                               &mOwn.context)),
          mShortcutGovernors(draw.shortcutGovernors),
          mRefiner(Create(who))
    {
        mSelector.Choose(draw.choice.value_or(0));
    }

    /// Does one of the operations, with shortcut information or without, and returns everything
    /// that comes of it.
    std::string Do(int operation, const Lists& lists, bool hasShortcutInfo)
    {
        const qe::LogCapture log(1);
        mRefiner->SetShortcutInfo(hasShortcutInfo ? mShortcutInfo.get() : nullptr);
        std::ostringstream out;
        Ids path{amd_id(0, 1, 1)};
        std::vector<Ids> paths{path};
        Ids ends{amd_id(0, 1, 2)};
        EndPairs pairs{{amd_id(0, 1, 3), amd_id(0, 1, 4)}};
        int weight = 5;
        try {
            out << Call(operation, lists, path, paths, ends, pairs, weight);
        } catch (const HBNException& error) {
            out << error.GetSeverity() << '/' << error.GetCode() << ' ' << error.what();
            for (const HBNMessage& message : error.GetMessages())
                WriteMessage(out, message);
        } catch (const ORVAssertError& error) {
            out << error.GetErrorCode() << ' ' << error.what();
        }
        out << "\npath" << Text(path) << "\nweight " << weight << "\nends" << Text(ends);
        for (const Ids& one : paths)
            out << "\none of the paths" << Text(one);
        for (const auto& [first, second] : pairs)
            out << "\nfrom " << ToText(first) << " to " << ToText(second);
        for (const qe::LogEntry& entry : log.GetEntries())
            out << "\nlogged " << entry.text;
        WriteServices(out);
        return out.str();
    }

private:
    AUT_RefPtr<AQE_I_Refiner> Create(EWho who)
    {
        AQE_I_PathSelector* const selector = mDraw.choice ? &mSelector : nullptr;
        const auto [facts, straight] = mDraw.switches;
        if (who == EWho::Library)
            return AQE_I_Refiner::Create(&mOwn.gateway, selector, mOwn.GetGovernors(),
                                         &mOwn.context, facts, straight);
        return AUT_RefPtr<AQE_I_Refiner>(new RefinerReference(
            {&mOwn.gateway, mOwn.GetGovernors(), &mOwn.context}, selector, mDraw.switches));
    }

    bool Call(int operation, const Lists& lists, Ids& path, std::vector<Ids>& paths,
              Ids& ends, EndPairs& pairs, int& weight)
    {
        const auto& [subjects, second, favoured, required, avoided, further, nodes, joins,
                     favouredSubjects] = lists;
        switch (operation) {
        case 0:
            mRefiner->ComputeJoinPath(subjects, favoured, required, nodes, joins, favouredSubjects,
                                      path);
            return true;
        case 1:
            mRefiner->GetJoinedQuerySubjects(subjects, nodes, joins, path);
            return true;
        case 2:
            mRefiner->ComputeJoinPathBetween(subjects, avoided, second, further, favoured, required,
                                             nodes, joins, path, weight, ends);
            return true;
        case 3:
            return mRefiner->ComputeBestJoinPaths(subjects, favoured, required, nodes, joins, paths,
                                                  avoided, favouredSubjects);
        case 4:
            mRefiner->ComputeBestJoinPathsBetween(subjects, avoided, second, further, favoured,
                                                  required, nodes, joins, paths, weight, pairs);
            return true;
        case 5:
            path.clear();
            return mRefiner->GetJoinTreeJoins(&mOther.gateway, subjects, favoured, required, nodes,
                                              joins, mOther.GetGovernors(), &mOther.context,
                                              &avoided, path);
        default:
            return mRefiner->GetJoinTreeJoins(&mOther.gateway, subjects, favoured, required, nodes,
                                              joins, mOther.GetGovernors(), &mOther.context,
                                              nullptr, path);
        }
    }

    static void WriteMessage(std::ostream& out, const ORVMessage& message)
    {
        out << "\nmessage " << std::hex << message.GetNumber() << std::dec;
        for (const ORVMessageParm& parameter : message.GetParameters())
            out << " <" << parameter.GetText() << ">";
    }

    /// Writes what the selector was shown, and the messages and remembered paths of the requests.
    void WriteServices(std::ostream& out)
    {
        out << "\nchoices " << mSelector.GetCallCount();
        for (const std::string& shown : mSelector.GetShown(mModel))
            out << "\n  " << shown;
        for (const Host* host : {&mOwn, &mOther}) {
            for (const auto& warning : host->context.GetUserMessages()) {
                WriteMessage(out, warning.message);
                out << ' ' << warning.severity << ' ' << warning.type;
            }
            if (host->context.GetJoinCache() == nullptr)
                continue;
            for (const Ids& path : host->context.GetJoinCache()->GetAllJoinPaths())
                out << "\nremembered" << Text(path);
        }
    }

    const ModelText& mModel;
    const Draw& mDraw;
    Host mOwn;
    Host mOther;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcutInfo;
    AQE_Governors mShortcutGovernors;
    RecordingSelector mSelector;
    AUT_RefPtr<AQE_I_Refiner> mRefiner;
};

std::string Describe(const ModelText& model, const Draw& draw, const Lists& lists)
{
    std::ostringstream out;
    out << draw.text << "\n| new algorithm " << draw.newAlgo << " | subjects "
        << model.Names(lists.subjects) << " | second " << model.Names(lists.secondSet)
        << " | favoured " << model.Names(lists.favouredJoins) << " | required "
        << model.Names(lists.requiredJoins) << " | avoided " << model.Names(lists.avoidedJoins)
        << " | further " << model.Names(lists.furtherAvoidedJoins) << " | nodes "
        << model.Names(lists.nodes) << " | joins " << model.Names(lists.joins)
        << " | favoured subjects " << model.Names(lists.favouredSubjects);
    return out.str();
}

struct ProcessCase
{
    const char* name;
    int ffJoins;
    int byFolder;
};

class RefinerProperty : public testing::TestWithParam<ProcessCase>
{
protected:
    static void Compare(const Draw& draw)
    {
        const SettingsOverride newAlgo("General Options", "NewAlgo", draw.newAlgo);
        const SettingsOverride governor("QueryEngine", "DoNotApplyCrossProductGovernor",
                                        draw.isGovernorOff);
        const ModelText model(draw.text);
        Side library(model, draw, EWho::Library);
        Side reference(model, draw, EWho::Reference);
        for (std::size_t i = 0; i < draw.lists.size(); ++i) {
            SCOPED_TRACE(Describe(model, draw, draw.lists[i]));
            for (const int operation : draw.operations)
                ASSERT_EQ(library.Do(operation, draw.lists[i], draw.hasShortcutInfo[i]),
                          reference.Do(operation, draw.lists[i], draw.hasShortcutInfo[i]))
                    << "operation " << operation;
        }
    }
};

TEST_P(RefinerProperty, AnswersAsItsRulesSay)
{
    if (RunsWithOtherCases())
        GTEST_SKIP() << kNeedsOwnProcess;
    const SettingsOverride ffJoins("General Options", "FFJoins", GetParam().ffJoins);
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", GetParam().byFolder);
    DrawMaker maker(20264);
    for (int round = 0; round < 3000 && !HasFatalFailure(); ++round)
        Compare(maker.Make());
}

INSTANTIATE_TEST_SUITE_P(AllSettings, RefinerProperty,
                         testing::Values(ProcessCase{"AllCandidates", 3, 0},
                                         ProcessCase{"BestCandidates", 1, 0},
                                         ProcessCase{"BestByFolder", 1, 1}),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
