// A host that embeds the refiner: it brings its own metadata and its own path selector, asks every
// operation, shows the user what the request has to say, and survives errors.

#include "HostTables.h"
#include "Printing.h"
#include "StationSelector.h"
#include "TableGateway.h"

#include "AQE_Governors.h"
#include "AQE_I_Authentication.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "HBNException.h"

#include <iostream>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace {

using host::FindIds;
using host::ToLine;
using Ids = std::vector<amd_id>;

class Analyst : public AQE_I_Authentication
{
public:
    std::vector<I18NString> GetUserClasses() const override { return {"Analysts"}; }
};

/// Everything that lives as long as one request. The refiner borrows all of it, so it stands last.
class Request
{
public:
    Request()
    {
        mContext.SetJoinCache(std::make_unique<AQE_JoinCache>());
        mContext.SetAuthentication(&mAnalyst);
        mGovernors.crossProductAllowed = 1;
        mShortcuts.reset(AQE_I_QuerySubjectShortcutInfo::Create(&mGateway, &mGovernors, &mContext));
        if (mShortcuts == nullptr)
            throw std::bad_alloc();
        mRefiner = AQE_I_Refiner::Create(&mGateway, &mSelector, &mGovernors, &mContext, true, true);
        mRefiner->SetShortcutInfo(mShortcuts.get());
    }

    void AskForPath(const char* title, const Ids& subjects)
    {
        std::cout << title << '\n';
        Ids path;
        mRefiner->ComputeJoinPath(subjects, {}, {}, mNodes, mJoins, {}, path);
        std::cout << "  joins: " << ToLine(path) << '\n';
        for (const amd_id& join : path)
            PrintCondition(join);
    }

    void AskForBestPaths()
    {
        std::cout << "All best paths from trips to cities, without the riders' homes\n";
        std::vector<Ids> paths;
        const Ids avoided = FindIds({"rider to city"});
        const bool found = mRefiner->ComputeBestJoinPaths(FindIds({"Trips", "Cities"}), {}, {},
                                                          mNodes, mJoins, paths, avoided, {});
        std::cout << "  found: " << (found ? "yes" : "no") << '\n';
        for (const Ids& path : paths)
            std::cout << "  joins: " << ToLine(path) << '\n';
    }

    void AskForSubjects()
    {
        std::cout << "Query subjects that a query over trips and cities reads\n";
        Ids subjects;
        mRefiner->GetJoinedQuerySubjects(FindIds({"Trips", "Cities"}), mNodes, mJoins, subjects);
        std::cout << "  subjects: " << ToLine(subjects) << '\n';
    }

    void AskForPathBetweenGroups()
    {
        std::cout << "One path from riders or stations to cities\n";
        Ids path;
        Ids ends;
        int weight = 0;
        mRefiner->ComputeJoinPathBetween(FindIds({"Riders", "Stations"}), {}, FindIds({"Cities"}),
                                         {}, {}, {}, mNodes, mJoins, path, weight, ends);
        std::cout << "  joins: " << ToLine(path) << ", weight " << weight << ", from "
                  << ToLine(ends) << '\n';
    }

    void AskForBestPathsBetweenGroups()
    {
        std::cout << "All best paths from riders or stations to cities\n";
        std::vector<Ids> paths;
        std::vector<std::pair<amd_id, amd_id>> ends;
        int weight = 0;
        mRefiner->ComputeBestJoinPathsBetween(FindIds({"Riders", "Stations"}), {},
                                              FindIds({"Cities"}), {}, {}, {}, mNodes, mJoins,
                                              paths, weight, ends);
        for (std::size_t index = 0; index < paths.size(); ++index)
            std::cout << "  joins: " << ToLine(paths[index]) << ", weight " << weight << ", from "
                      << ToLine({ends[index].first, ends[index].second}) << '\n';
    }

    void AskForTree()
    {
        std::cout << "Joins of a tree over trips, riders and the calendar\n";
        Ids joins;
        mRefiner->GetJoinTreeJoins(&mGateway, FindIds({"Trips", "Riders", "Calendar"}), {}, {},
                                   mNodes, mJoins, &mGovernors, &mContext, nullptr, joins);
        std::cout << "  joins: " << ToLine(joins) << '\n';
    }

    void AskWithoutShortcuts()
    {
        mRefiner->SetShortcutInfo(nullptr);
        AskForPath("From riders to the calendar, without the shortcuts",
                   FindIds({"Riders", "Calendar"}));
        mRefiner->SetShortcutInfo(mShortcuts.get());
    }

    void PrintWarnings() const
    {
        std::cout << "What the request tells its user\n";
        for (const auto& message : mContext.GetUserMessages())
            std::cout << "  severity " << message.severity << ": " << message.message.GetText()
                      << '\n';
    }

    void ForbidCrossProducts() { mGovernors.crossProductAllowed = 2; }
    void BreakSelector() { mSelector.Misbehave(); }

private:
    void PrintCondition(const amd_id& join)
    {
        AQE_I_Refiner::QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(&mGateway, &mContext, join, info) ||
            mShortcuts->GetJoinInfo(join, info))
            std::cout << "    " << ToLine({info.leftQuerySubject, info.rightQuerySubject})
                      << " on: " << info.expression << '\n';
    }

    const Ids mNodes = host::GetNodes();
    const Ids mJoins = host::GetJoins();
    Analyst mAnalyst;
    host::TableGateway mGateway;
    host::StationSelector mSelector;
    AQE_Governors mGovernors;
    AQE_RequestContext mContext;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> mShortcuts;
    AUT_RefPtr<AQE_I_Refiner> mRefiner;
};

/// Asks for a path and prints the error that comes instead, with its message numbers.
void ExpectError(Request& request, const char* title, const Ids& subjects)
{
    try {
        request.AskForPath(title, subjects);
    } catch (const HBNException& exception) {
        for (const auto& message : exception.GetMessages())
            std::cout << "  error " << std::hex << message.GetNumber() << std::dec << ": "
                      << message.GetText() << '\n';
        std::cout << "  severity " << exception.GetSeverity() << ", code " << exception.GetCode()
                  << ", raised at " << exception.GetLocation().file << ':'
                  << exception.GetLocation().line << '\n';
    }
}

void Run()
{
    Request request;
    request.AskForPath("From trips to cities", FindIds({"Trips", "Cities"}));
    request.AskForPath("The same again, from the request's cache", FindIds({"Cities", "Trips"}));
    request.AskForPath("From trips to the calendar, over shortcuts",
                       FindIds({"Trips", "Calendar"}));
    request.AskForBestPaths();
    request.AskForSubjects();
    request.AskForPathBetweenGroups();
    request.AskForBestPathsBetweenGroups();
    request.AskForTree();
    request.AskWithoutShortcuts();
    request.AskForPath("From trips to pay, which nothing joins", FindIds({"Trips", "Pay"}));
    request.PrintWarnings();

    Request strict;
    strict.ForbidCrossProducts();
    ExpectError(strict, "The same where cross products are forbidden", FindIds({"Trips", "Pay"}));
    ExpectError(strict, "The next request is answered", FindIds({"Trips", "Riders"}));
    strict.BreakSelector();
    ExpectError(strict, "A selector that chooses a path there is not",
                FindIds({"Trips", "Cities"}));
}

} // namespace

int main()
{
    try {
        Run();
        return 0;
    } catch (const std::exception& exception) {
        std::cerr << "unexpected: " << exception.what() << '\n';
        return 1;
    }
}
