#include "Benchmarks/RequestGrowth.h"

#include "AQE_Governors.h"
#include "AQE_I_FactFinder.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Benchmarks/Candidates.h"
#include "Engine/Services/SettingsOverride.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace qe::measure {

namespace {

using namespace qe::model;

/// Prints how the time grows when the size is doubled: 2 is linear, 4 quadratic (and up to 6 where
/// the caches are outgrown), 8 cubic.
void PrintGrowth(const char* what, const std::vector<int>& sizes,
                 const std::function<double(int)>& measure, double mostGrowth)
{
    double before = 0;
    for (const int size : sizes) {
        const double time = measure(size);
        std::printf("%-44s %8d %11.2f ms", what, size, time / 1000);
        if (before > 0)
            std::printf("  x %4.1f (%3.1f)  %s", time / before, mostGrowth,
                        Judge(time <= mostGrowth * before));
        std::printf("\n");
        before = time;
    }
}

/// A ring of subjects with chords, some of whose joins must be used: the pairwise algorithm.
double MeasurePairwise(int required)
{
    const int count = 5 * required;
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("Sales");
    Ids subjects;
    for (int i = 0; i < count; ++i)
        subjects.push_back(builder.AddQuerySubject(space, "Subject " + std::to_string(i)));
    Ids joins;
    for (int i = 0; i < 2 * count; ++i) {
        const int other = i < count ? i + 1 : i + 37;
        joins.push_back(builder.AddRelationship(
            space, "Join " + std::to_string(i),
            {subjects[static_cast<std::size_t>(i % count)], kOneToMany},
            {subjects[static_cast<std::size_t>(other % count)], kOneToOne}));
    }
    const qe::SettingsOverride pairwise("General Options", "NewAlgo", 0);
    const Candidates ring = MakeCandidates(builder, IdClassRelationship);
    Ids chosen;
    for (std::size_t i = 0; i < static_cast<std::size_t>(required); ++i)
        chosen.push_back(joins[5 * i]);
    return Time(1, [&] {
        AQE_RequestContext context;
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        const auto refiner =
            AQE_I_Refiner::Create(ring.gateway.get(), nullptr, nullptr, &context, false, false);
        Ids tree;
        std::vector<Ids> paths;
        refiner->ComputeBestJoinPaths({subjects[0], subjects[2]}, {}, chosen, ring.nodes,
                                      ring.joins, paths, {}, {});
    });
}

/// A chain of dimensions, each of which is also a dimension of the one two before it.
double MeasureFacts(int joins)
{
    return Time(1, [&] {
        const AUT_RefPtr<AQE_I_FactFinder> finder = AQE_I_FactFinder::Create();
        const auto add = [&](int fact, int dimension) {
            finder->AddJoin({0, IdClassRelationship, fact}, {0, IdClassQuerySubject, fact}, 12,
                            {0, IdClassQuerySubject, dimension}, 11);
        };
        for (int i = 1; i <= joins / 2; ++i) {
            add(i, i + 2);
            add(i, i + 1);
        }
    });
}

/// As many shortcuts as groups: each is asked for once.
double MeasureGroups(int groups)
{
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("Sales");
    for (int i = 0; i < groups; ++i) {
        const std::string name = "Subject " + std::to_string(i);
        builder.AddShortcut(space, "Role of " + name,
                            {.object = builder.AddQuerySubject(space, name)});
    }
    const Candidates model = MakeCandidates(builder, IdClassRelationship);
    const Ids shortcuts = GetIds(*model.gateway, IdClassShortcut);
    AQE_Governors governors{};
    AQE_RequestContext context;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> info(
        AQE_I_QuerySubjectShortcutInfo::Create(model.gateway.get(), &governors, &context));
    info->Initialize(shortcuts, {}, {});
    constexpr int kRuns = 10;
    return Time(kRuns, [&] {
        for (const amd_id& shortcut : shortcuts) {
            if (info->GetGroupKey(shortcut) == shortcut)
                std::abort();
        }
    });
}

} // namespace

void MeasureGrowth(const std::function<bool(std::string_view)>& isWanted)
{
    if (isWanted("pairwise"))
        PrintGrowth("pairwise growth, required joins", {50, 100, 200, 400}, MeasurePairwise, 6.0);
    if (isWanted("facts"))
        PrintGrowth("fact finder, joins", {1250, 2500, 5000}, MeasureFacts, 6.0);
    if (isWanted("groups"))
        PrintGrowth("group keys, shortcuts", {5000, 10000, 20000, 40000, 80000}, MeasureGroups,
                    3.0);
}

} // namespace qe::measure
