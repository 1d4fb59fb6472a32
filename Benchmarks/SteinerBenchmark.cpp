// Searches public graphs with known optimum and prints what was found, how fast, and in how much
// memory:
//
//     SteinerBenchmark FOLDER [--effort=STEPS] [--megabytes=N] [NAME...]
//
// FOLDER holds NAME.gr files and a README.md whose table gives for each name the optimum, the
// number of optimum trees where known, and a reference time. Each graph is searched in a process
// of its own, so that the peak memory is its own. Ends with 1 when an answer is wrong.
//
// "ok" is a weight that is proven to be least. "not-proven(BOUND)" is a tree without a proof, and
// a weight that no tree is below. "count-at-least" has fewer trees counted than there are, which
// says nothing about the weight.

#include "Engine/Graph/Steiner/SteinerSolver.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace qe::graph;

/// One row of the table of known answers.
struct KnownAnswer
{
    std::string name;
    std::uint64_t weight = 0;
    std::optional<std::uint64_t> count;
    double seconds = 0;
};

std::vector<KnownAnswer> ReadKnownAnswers(const std::string& folder)
{
    std::ifstream text(folder + "/README.md");
    std::vector<KnownAnswer> answers;
    for (std::string line; std::getline(text, line);) {
        std::istringstream cells(line);
        std::vector<std::string> row;
        for (std::string cell; std::getline(cells, cell, '|');) {
            std::erase_if(cell, [](char sign) { return sign == ' ' || sign == ','; });
            row.push_back(cell);
        }
        if (row.size() < 8 || row[1].empty() || row[1][0] < '0' || row[1][0] > '9')
            continue;
        KnownAnswer answer{row[1], std::stoull(row[5]), std::nullopt, std::stod(row[7])};
        if (row[6] != "-")
            answer.count = std::stoull(row[6]);
        answers.push_back(answer);
    }
    return answers;
}

double Measure(const SteinerGraph& graph, SteinerLimits limits, std::size_t maximumTrees,
               SteinerResult& result)
{
    limits.maximumTrees = maximumTrees;
    const auto start = std::chrono::steady_clock::now();
    result = FindCheapestTrees(graph.View(), graph.terminals, limits);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string Judge(const SteinerResult& result, const KnownAnswer& known)
{
    std::string verdict;
    if (result.proof == EProof::BestFound)
        verdict += " not-proven(" + std::to_string(result.lowerBound) + ")";
    else if (result.weight != known.weight)
        verdict += " WRONG-WEIGHT";
    if (result.countProof == ECount::AtLeast)
        verdict += " count-at-least";
    else if (known.count && result.count != *known.count)
        verdict += " WRONG-COUNT";
    const std::uint64_t listed = std::min<std::uint64_t>(result.count, 1000);
    if (result.countProof == ECount::Exact && result.trees.size() != listed)
        verdict += " WRONG-LIST";
    if (std::adjacent_find(result.trees.begin(), result.trees.end()) != result.trees.end())
        verdict += " WRONG-DUPLICATE";
    return verdict.empty() ? " ok" : verdict;
}

/// Searches one graph, prints its row and writes the time to the pipe.
int Run(const std::string& folder, const KnownAnswer& known, const SteinerLimits& limits,
        int pipeEnd)
{
    std::ifstream text(folder + "/" + known.name + ".gr");
    const std::optional<SteinerGraph> graph = ReadSteinerGraph(text);
    if (!graph) {
        std::cerr << known.name << ": cannot be read\n";
        return 1;
    }
    SteinerResult result;
    const double valueSeconds = Measure(*graph, limits, 1, result);
    const double listSeconds = Measure(*graph, limits, 1000, result);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const std::string verdict = Judge(result, known);
    std::printf("%-4s %6u %6u %4zu %9llu %20llu %8.3f %8.3f %9.1f %6ld %7.2f %s\n",
                known.name.c_str(), graph->View().GetNodeCount(), graph->View().GetEdgeCount(),
                graph->terminals.size(), static_cast<unsigned long long>(result.weight),
                static_cast<unsigned long long>(result.count), valueSeconds, listSeconds,
                static_cast<double>(result.steps) / 1e6, usage.ru_maxrss / 1024,
                valueSeconds / known.seconds, verdict.c_str());
    std::fflush(stdout);
    const bool isWritten = write(pipeEnd, &valueSeconds, sizeof valueSeconds) > 0;
    return isWritten && verdict.find("WRONG") == std::string::npos ? 0 : 1;
}

/// Takes a limit over from the argument, if it is one.
bool TakeLimit(const std::string& argument, SteinerLimits& limits)
{
    const std::size_t value = argument.find('=') + 1;
    if (argument.starts_with("--effort="))
        limits.effort = std::stoull(argument.substr(value));
    else if (argument.starts_with("--megabytes="))
        limits.memory = std::stoull(argument.substr(value)) << 20U;
    else
        return false;
    return true;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount < 2) {
        std::cerr << "usage: SteinerBenchmark FOLDER [--effort=STEPS] [--megabytes=N] [NAME...]\n";
        return 2;
    }
    const std::string folder = arguments[1];
    std::vector<std::string> wanted(arguments + 2, arguments + argumentCount);
    SteinerLimits limits;
    std::erase_if(wanted, [&limits](const std::string& word) { return TakeLimit(word, limits); });
    std::printf(
        "name  nodes  edges    k    weight                count  value,s   list,s  msteps       MB"
        "   ratio\n");
    std::fflush(stdout);
    bool isGood = true;
    double logSum = 0;
    int runs = 0;
    for (const KnownAnswer& known : ReadKnownAnswers(folder)) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), known.name) == wanted.end())
            continue;
        int ends[2];
        if (pipe(ends) != 0)
            return 2;
        const pid_t child = fork();
        if (child == 0)
            _exit(Run(folder, known, limits, ends[1]));
        close(ends[1]);
        int status = 0;
        waitpid(child, &status, 0);
        isGood = isGood && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        double seconds = 0;
        if (read(ends[0], &seconds, sizeof seconds) == sizeof seconds) {
            logSum += std::log(seconds / known.seconds);
            ++runs;
        }
        close(ends[0]);
    }
    if (runs > 0)
        std::printf("geometric mean of the ratios to the reference times: %.3f\n",
                    std::exp(logSum / runs));
    return isGood ? 0 : 1;
}
