// Searches graphs like those of real models, 100 to 20,000 nodes and 2 to 40 terminals, and
// prints how time grows with both; then one graph that no exact search can finish:
//
//     SchemaGraphBenchmark [SCRIPT.sql]
//
// SCRIPT.sql is a DDL script whose foreign keys make one more graph. Each row is the slowest of
// several draws, in a process of its own, so that the peak memory is its own. Times are processor
// times.

#include "Benchmarks/SchemaGraphs.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <optional>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace qe::graph;

constexpr std::uint32_t kDraws = 5;

struct Row
{
    double valueSeconds = -1;
    double listSeconds = 0;
    SteinerResult result;
    std::uint32_t nodes = 0;
    std::uint32_t edges = 0;
    std::size_t terminals = 0;
};

double Measure(const SteinerGraph& graph, std::size_t maximumTrees, SteinerResult& result)
{
    SteinerLimits limits;
    limits.maximumTrees = maximumTrees;
    const std::clock_t start = std::clock();
    result = FindCheapestTrees(graph.View(), graph.terminals, limits);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// Returns in how many seconds the optimum is to be found, where there is an aim.
std::optional<double> GetAim(const Row& row)
{
    if (row.nodes <= 500 && row.terminals <= 8)
        return 0.001;
    if (row.nodes <= 20000 && row.terminals <= 8)
        return 0.05;
    if (row.nodes <= 20000 && row.terminals <= 20)
        return 1;
    return std::nullopt;
}

void Print(const std::string& name, const Row& row)
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const std::optional<double> aim = GetAim(row);
    const double listing = row.listSeconds - row.valueSeconds;
    const auto trees = static_cast<double>(row.result.trees.size());
    std::string verdict = !aim ? "-" : row.valueSeconds <= *aim ? "ok" : "MISSED";
    if (trees >= 1000 && listing > trees / 1e5)
        verdict += " slow-list";
    if (row.result.proof == EProof::BestFound)
        verdict += " not-proven(" + std::to_string(row.result.lowerBound) + ")";
    std::printf("%-10s %6u %6u %4zu %8llu %20llu %9.3f %9.3f %6ld %s\n", name.c_str(), row.nodes,
                row.edges, row.terminals, static_cast<unsigned long long>(row.result.weight),
                static_cast<unsigned long long>(row.result.count), 1000 * row.valueSeconds,
                1000 * row.listSeconds, usage.ru_maxrss / 1024, verdict.c_str());
    std::fflush(stdout);
}

/// Searches what is drawn so many times in another process, and prints the slowest.
void Run(const std::string& name, std::uint32_t draws,
         const std::function<SteinerGraph(std::mt19937&)>& draw)
{
    const pid_t child = fork();
    if (child != 0) {
        waitpid(child, nullptr, 0);
        return;
    }
    Row slowest;
    std::mt19937 random(11);
    for (std::uint32_t round = 0; round < draws; ++round) {
        const SteinerGraph graph = draw(random);
        Row row;
        row.valueSeconds = Measure(graph, 1, row.result);
        row.listSeconds = Measure(graph, 1000, row.result);
        row.nodes = graph.View().GetNodeCount();
        row.edges = graph.View().GetEdgeCount();
        row.terminals = graph.terminals.size();
        if (row.valueSeconds > slowest.valueSeconds)
            slowest = std::move(row);
    }
    Print(name, slowest);
    _exit(0);
}

void RunScript(const char* path)
{
    std::ifstream script(path);
    const std::vector<Edge> keys = ReadForeignKeys(script);
    if (keys.empty()) {
        std::cerr << "no foreign keys to be read in " << path << '\n';
        return;
    }
    for (const std::uint32_t terminals : {2U, 8U, 20U, 40U}) {
        Run("script", kDraws,
            [&](std::mt19937& random) { return MakeSchemaGraph(keys, terminals, random); });
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::printf("shape       nodes  edges    k   weight                count  value,ms   list,ms"
                "     MB aim\n");
    std::fflush(stdout);
    for (const SchemaShape& shape : GetSchemaShapes()) {
        for (const std::uint32_t nodes : {100U, 500U, 2000U, 20000U}) {
            for (const std::uint32_t terminals : {2U, 8U, 20U, 40U}) {
                Run(shape.name, kDraws, [&](std::mt19937& random) {
                    return MakeSchemaGraph(shape.draw(nodes, random), terminals, random);
                });
            }
        }
    }
    if (argumentCount > 1)
        RunScript(arguments[1]);
    else
        std::cerr << "no script given: its foreign keys are left out\n";
    Run("hostile", 1, [](std::mt19937&) { return DrawHostileGraph(); });
    return 0;
}
