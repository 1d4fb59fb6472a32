#include "AQE_I_Authentication.h"
#include "AQE_JoinCache.h"
#include "Engine/Model/Model.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "ORVAssertError.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Source/Reference/RefinerReference.h"
#include "Tests/Source/Reference/RequestDraw.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/RecordingSelector.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using qe::SettingsOverride;
using qe::test::CountingGateway;
using qe::test::Draw;
using qe::test::EndPairs;
using qe::test::HostDraw;
using qe::test::Ids;
using qe::test::Lists;
using qe::test::ModelText;
using qe::test::RecordingSelector;
using qe::test::RefinerReference;

class User : public AQE_I_Authentication
{
public:
    explicit User(const char* userClass) : mClasses{userClass} {}

    [[nodiscard]] std::vector<I18NString> GetUserClasses() const override { return mClasses; }

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
          mShortcutGovernors(draw.shortcutGovernors),
          mShortcutInfo(AQE_I_QuerySubjectShortcutInfo::Create(&mOwn.gateway, &mShortcutGovernors,
                                                               &mOwn.context)),
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
        const bool facts = mDraw.useFactTableCount;
        const bool straight = mDraw.useStraightestPath;
        if (who == EWho::Library)
            return AQE_I_Refiner::Create(&mOwn.gateway, selector, mOwn.GetGovernors(),
                                         &mOwn.context, facts, straight);
        return AUT_RefPtr<AQE_I_Refiner>(new RefinerReference(
            {&mOwn.gateway, mOwn.GetGovernors(), &mOwn.context}, selector, {facts, straight}));
    }

    bool Call(int operation, const Lists& lists, Ids& path, std::vector<Ids>& paths, Ids& ends,
              EndPairs& pairs, int& weight)
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
    AQE_Governors mShortcutGovernors;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcutInfo;
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

/// Settings that a process reads once.
struct ProcessCase
{
    const char* name;
    int ffJoins;
    int byFolder;
    unsigned seed;

    friend std::ostream& operator<<(std::ostream& out, const ProcessCase& entry)
    {
        return out << entry.name;
    }
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
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const SettingsOverride ffJoins("General Options", "FFJoins", GetParam().ffJoins);
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", GetParam().byFolder);
    std::mt19937 random(GetParam().seed);
    for (int round = 0; round < 3000 && !HasFatalFailure(); ++round)
        Compare(qe::test::DrawRequest(random));
}

INSTANTIATE_TEST_SUITE_P(AllSettings, RefinerProperty,
                         testing::Values(ProcessCase{"AllCandidates", 3, 0, 20261},
                                         ProcessCase{"BestCandidates", 1, 0, 6},
                                         ProcessCase{"BestByFolder", 1, 1, 20263}),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
