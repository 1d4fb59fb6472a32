// What a request costs, measured against one look at the model: a sweep reads every candidate join
// once through the gateway and throws it away. Prints tables with the limits that hold.
//
//     RequestBenchmark [requests [SUBJECTS [RUNS]] | ranking | pairwise | facts | groups]

#include "AQE_Governors.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Benchmarks/Candidates.h"
#include "Benchmarks/RequestGrowth.h"
#include "Engine/Model/ModelBuilder.h"
#include "amdi_object.h"
#include "amdi_relationship.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace qe::model;
using namespace qe::measure;

amd_id AddSubject(ModelBuilder& builder, const amd_id& space, const std::string& name)
{
    const amd_id subject = builder.AddQuerySubject(space, name);
    builder.AddItem(subject, "Key");
    return subject;
}

std::string WriteCondition(const std::string& left, const std::string& right)
{
    return "[Sales].[" + left + "].[Key] = [Sales].[" + right + "].[Key]";
}

// ---------------------------------------------------------------------------------------------
// Requests

/// Facts with ten dimensions each, which they share with the facts around them.
struct Galaxy
{
    static constexpr int kDimensionsOfFact = 10;

    Candidates candidates{};
    std::vector<Ids> dimensionsOfFact{};
    Ids facts{};
};

Galaxy MakeGalaxy(int subjectCount)
{
    constexpr int kWindow = 40;
    const int factCount = subjectCount / 5;
    const int dimensionCount = subjectCount - factCount;
    std::mt19937 random(1);
    ModelBuilder builder;
    Galaxy galaxy;
    const amd_id space = builder.AddNamespace("Sales");
    Ids dimensions;
    for (int i = 0; i < dimensionCount; ++i)
        dimensions.push_back(AddSubject(builder, space, "Dimension " + std::to_string(i)));
    for (int fact = 0; fact < factCount; ++fact) {
        const std::string factName = "Fact " + std::to_string(fact);
        galaxy.facts.push_back(AddSubject(builder, space, factName));
        Ids& own = galaxy.dimensionsOfFact.emplace_back();
        while (own.size() < Galaxy::kDimensionsOfFact) {
            const int place = (4 * fact + static_cast<int>(random() % kWindow)) % dimensionCount;
            const amd_id dimension = dimensions[static_cast<std::size_t>(place)];
            if (std::find(own.begin(), own.end(), dimension) != own.end())
                continue;
            own.push_back(dimension);
            const std::string name = "Dimension " + std::to_string(place);
            std::string joinName = factName;
            joinName.append(" to ").append(name);
            builder.AddRelationship(space, joinName, {galaxy.facts.back(), kOneToMany},
                                    {dimension, kOneToOne}, WriteCondition(factName, name));
        }
    }
    galaxy.candidates = MakeCandidates(builder, IdClassRelationship);
    return galaxy;
}

/// Returns what a report asks for: a fact, some of its dimensions, and one of the fact next to it.
Ids ChooseSubjects(const Galaxy& galaxy, std::size_t fact, int count)
{
    fact %= galaxy.facts.size();
    const Ids& own = galaxy.dimensionsOfFact[fact];
    Ids subjects{galaxy.facts[fact]};
    subjects.insert(subjects.end(), own.begin(), own.begin() + (count - 2));
    for (const amd_id& other : galaxy.dimensionsOfFact[(fact + 1) % galaxy.facts.size()]) {
        if (subjects.size() < static_cast<std::size_t>(count) &&
            std::find(own.begin(), own.end(), other) == own.end())
            subjects.push_back(other);
    }
    return subjects;
}

/// Reads every join with both its ends, and keeps nothing.
std::size_t Sweep(const Candidates& candidates)
{
    std::size_t length = 0;
    for (const amd_id& id : candidates.joins) {
        const auto* const join = static_cast<amdi_relationship*>(candidates.gateway->GetObject(id));
        const I18NString name = join->GetName();
        const I18NString condition = join->GetExpressionText();
        length += name.Length() + condition.Length();
        length += static_cast<std::size_t>(join->GetLeftCardinality().maximum +
                                           join->GetRightCardinality().maximum);
        for (const amd_id& end : {join->GetLeftId(), join->GetRightId()})
            length += static_cast<std::size_t>(candidates.gateway->GetObject(end)->GetId().number);
    }
    return length;
}

/// A request context with its refiner.
struct Request
{
    explicit Request(const Candidates& asked, bool hasCache = true, bool countsFacts = true,
                     AQE_Governors* governors = nullptr)
        : candidates(asked)
    {
        if (hasCache)
            context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        refiner = AQE_I_Refiner::Create(candidates.gateway.get(), selector.Get(), governors,
                                        &context, countsFacts, countsFacts);
    }

    std::size_t Ask(const Ids& subjects, const Ids& required = {})
    {
        Ids path;
        refiner->ComputeJoinPath(subjects, {}, required, candidates.nodes, candidates.joins, {},
                                 path);
        if (path.empty())
            std::abort();
        return path.size();
    }

    const Candidates& candidates;
    AUT_RefPtr<AQE_I_PathSelector> selector = AQE_I_PathSelector::CreateFirstPathSelector(nullptr);
    AQE_RequestContext context;
    AUT_RefPtr<AQE_I_Refiner> refiner{nullptr};
};

/// What a request may cost, in sweeps.
struct Limits
{
    double first;
    double next;
    double repeated;
};

Limits GetLimits(int subjects, int terminals)
{
    if (subjects < 1000)
        return {.first = terminals == 10 ? 8.0 : 4.0, .next = 3.0, .repeated = 0.03};
    return {.first = terminals == 10 ? 3.0 : 2.5,
            .next = terminals == 10 ? 1.0 : 0.5,
            .repeated = 0.001};
}

void MeasureRequests(const Galaxy& galaxy, int subjects, int terminals, int wantedRuns)
{
    constexpr std::size_t kNextRequests = 8;
    const int runs = wantedRuns > 0 ? wantedRuns : std::clamp(200000 / subjects, 3, 200);
    std::vector<Ids> asked;
    for (std::size_t i = 0; i <= kNextRequests; ++i)
        asked.push_back(ChooseSubjects(galaxy, 7 + 5 * i, terminals));
    std::size_t sink = 0;
    const double sweep = Time(runs, [&] { sink += Sweep(galaxy.candidates); });
    const double first = Time(runs, [&] { sink += Request(galaxy.candidates).Ask(asked.front()); });
    double next = std::numeric_limits<double>::max();
    double repeated = next;
    for (int run = 0; run < runs; ++run) {
        Request request(galaxy.candidates);
        request.Ask(asked.front());
        const double all = Time(1, [&] {
            for (std::size_t i = 1; i <= kNextRequests; ++i)
                sink += request.Ask(asked[i]);
        });
        next = std::min(next, all / kNextRequests);
        repeated = std::min(repeated, Time(3, [&] { sink += request.Ask(asked.front()); }));
    }
    const Limits limits = GetLimits(subjects, terminals);
    const bool isHeld = first <= limits.first * sweep && next <= limits.next * sweep &&
                        repeated <= limits.repeated * sweep;
    std::printf(
        "%8d %6d %11.1f %11.1f %6.2f (%3.1f) %11.1f %6.2f (%3.1f) %8.2f %8.5f (%5.3f)  %s\n",
        subjects, terminals, sweep, first, first / sweep, limits.first, next, next / sweep,
        limits.next, repeated, repeated / sweep, limits.repeated, Judge(isHeld));
    if (sink == 0)
        std::abort();
}

void MeasureRequests(std::string_view onlySubjects, int wantedRuns)
{
    std::printf("Requests: microseconds, and sweeps (limit)\n%8s %6s %11s %11s %12s %11s %12s %8s "
                "%16s\n",
                "subjects", "asked", "sweep", "first", "", "next", "", "again", "");
    for (const int subjects : {100, 1000, 10000, 100000}) {
        if (!onlySubjects.empty() && onlySubjects != std::to_string(subjects))
            continue;
        const Galaxy galaxy = MakeGalaxy(subjects);
        for (const int terminals : {2, 5, 10})
            MeasureRequests(galaxy, subjects, terminals, wantedRuns);
    }
}

// ---------------------------------------------------------------------------------------------
// Ranking

/// A chain of ten links with two joins each: 1,024 candidates, of which 1,000 are listed.
Candidates MakeLadder(IdClass joinClass)
{
    constexpr int kLinks = 10;
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("Sales");
    Ids subjects;
    std::vector<std::string> names;
    for (int i = 0; i <= kLinks; ++i) {
        names.push_back("Subject " + std::to_string(i));
        subjects.push_back(AddSubject(builder, space, names.back()));
    }
    Ids ends{subjects.front()};
    for (std::size_t i = 1; i <= kLinks; ++i) {
        const amd_id shortcut =
            builder.AddShortcut(space, "Role of " + names[i], {.object = subjects[i]});
        for (const char* const side : {" left", " right"}) {
            const std::string name = names[i] + side;
            const amd_id relationship = builder.AddRelationship(
                space, name, {subjects[i - 1], kOneToMany}, {subjects[i], kOneToOne},
                WriteCondition(names[i - 1], names[i]));
            builder.AddRelationshipShortcut(
                space, "Seen " + name,
                {.relationship = relationship, .left = ends.back(), .right = shortcut});
        }
        ends.push_back(shortcut);
    }
    Candidates candidates = MakeCandidates(builder, joinClass);
    if (joinClass == IdClassRelationshipShortcut)
        candidates.nodes = ends;
    return candidates;
}

void MeasureRanking(const char* title, IdClass joinClass, bool hasCache, bool countsFacts)
{
    constexpr int kRuns = 20;
    const Candidates ladder = MakeLadder(joinClass);
    // Both lie at the ends of the chain; what is between belongs to every candidate.
    const amd_id first = ladder.nodes.front();
    const amd_id last = ladder.nodes.back();
    std::size_t count = 0;
    // The best paths are, by default, all candidates as they were found.
    const double found = Time(kRuns, [&] {
        Request request(ladder, hasCache, countsFacts);
        std::vector<Ids> paths;
        request.refiner->ComputeBestJoinPaths({first, last}, {}, {}, ladder.nodes, ladder.joins,
                                              paths, {}, {});
        count = paths.size();
    });
    const double chosen = Time(kRuns, [&] {
        Request(ladder, hasCache, countsFacts).Ask({first, last});
    });
    std::printf("%-44s %6zu %9.1f %9.1f %6.2f (1.0)  %s\n", title, count, found, chosen - found,
                (chosen - found) / found, Judge(chosen <= 2 * found));
}

void MeasureRanking()
{
    std::printf(
        "Ranking: microseconds to find the candidates and to rank them\n%-44s %6s %9s %9s\n",
        "candidates of ten joins", "listed", "find", "rank");
    MeasureRanking("relationships", IdClassRelationship, true, false);
    MeasureRanking("relationships, facts and straightness", IdClassRelationship, true, true);
    MeasureRanking("relationships, no cache, both", IdClassRelationship, false, true);
    MeasureRanking("relationship shortcuts, both", IdClassRelationshipShortcut, true, true);
    MeasureRanking("relationship shortcuts, no cache, both", IdClassRelationshipShortcut, false,
                   true);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view part = argc > 1 ? argv[1] : "";
    const auto isWanted = [&](std::string_view name) { return part.empty() || part == name; };
    if (isWanted("requests"))
        MeasureRequests(argc > 2 ? argv[2] : "", argc > 3 ? std::atoi(argv[3]) : 0);
    if (isWanted("ranking"))
        MeasureRanking();
    MeasureGrowth(isWanted);
    return 0;
}
