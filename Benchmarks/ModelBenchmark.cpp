// What it costs to build a large model and to find objects in it.

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelError.h"
#include "Engine/Model/ModelGateway.h"
#include "amdi_object.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>

#include <memory>
#include <string>

namespace {

using namespace qe::model;

/// Ten objects for each query subject: itself, eight items, and a relationship to the one before.
ModelBuilder Fill(std::int64_t objects)
{
    ModelBuilder builder;
    const amd_id space = builder.AddNamespace("Sales");
    amd_id previous;
    for (std::int64_t i = 0; i < objects / 10; ++i) {
        const std::string name = "Subject " + std::to_string(i);
        const amd_id subject = builder.AddQuerySubject(space, name);
        for (int item = 0; item < 8; ++item)
            builder.AddItem(subject, "Item " + std::to_string(item));
        builder.AddRelationship(space, name, {i == 0 ? subject : previous, OneToMany}, {name});
        previous = subject;
    }
    return builder;
}

void Build(benchmark::State& state)
{
    const ModelBuilder builder = Fill(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(builder.Build());
}
BENCHMARK(Build)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);

void GetObject(benchmark::State& state)
{
    ModelGateway gateway(Fill(state.range(0)).Build());
    const auto ids = gateway.GetModel().GetIds(IdClassQueryItem);
    std::size_t i = 0;
    for (auto _ : state) {
        i = (i + 7919) % ids.size();
        benchmark::DoNotOptimize(gateway.GetObject(ids[i]));
    }
}
BENCHMARK(GetObject)->Arg(5000)->Arg(50000);

void ResolveReference(benchmark::State& state)
{
    ModelGateway gateway(Fill(state.range(0)).Build());
    const auto subjects = static_cast<std::size_t>(state.range(0) / 10);
    std::size_t i = 0;
    for (auto _ : state) {
        i = (i + 7919) % subjects;
        benchmark::DoNotOptimize(
            gateway.ResolveReference({"Sales", "Subject " + std::to_string(i), "Item 5"}));
    }
}
BENCHMARK(ResolveReference)->Arg(5000)->Arg(50000);

void FindByName(benchmark::State& state)
{
    const auto model = Fill(state.range(0)).Build();
    for (auto _ : state)
        benchmark::DoNotOptimize(model->FindByName(EFamily::Item, "SALES.subject 77.item 5"));
}
BENCHMARK(FindByName)->Arg(5000)->Arg(50000);

void SuggestNames(benchmark::State& state)
{
    const auto model = Fill(state.range(0)).Build();
    for (auto _ : state)
        benchmark::DoNotOptimize(model->SuggestNames(EFamily::Item, "Sales.Subjct 77.Item 5"));
}
BENCHMARK(SuggestNames)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);

/// Every relationship names an unknown end: the most that a wrong model can cost.
void RefuseManyWrongNames(benchmark::State& state)
{
    ModelBuilder builder = Fill(state.range(0));
    for (std::int64_t i = 0; i < state.range(0) / 10; ++i)
        builder.AddSpecJoin("j", {"Subjcet " + std::to_string(i)}, {"Subject 1"});
    for (auto _ : state) {
        try {
            benchmark::DoNotOptimize(builder.Build());
        } catch (const ModelError& error) {
            benchmark::DoNotOptimize(error.GetProblems().size());
        }
    }
}
BENCHMARK(RefuseManyWrongNames)->Arg(50000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
