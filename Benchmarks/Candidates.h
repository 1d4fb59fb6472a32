#ifndef BENCHMARKS_CANDIDATES_H
#define BENCHMARKS_CANDIDATES_H

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelGateway.h"
#include "amd_id.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace qe::measure {

using Ids = std::vector<amd_id>;

/// Returns the least time of several runs, in microseconds.
[[nodiscard]] inline double Time(int runs, const std::function<void()>& run)
{
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        run();
        const std::chrono::duration<double, std::micro> time =
            std::chrono::steady_clock::now() - start;
        least = std::min(least, time.count());
    }
    return least;
}

/// A model with the nodes and joins that its requests name as candidates.
struct Candidates
{
    std::unique_ptr<qe::model::ModelGateway> gateway;
    Ids nodes{};
    Ids joins{};
};

[[nodiscard]] inline Ids GetIds(const qe::model::ModelGateway& gateway, IdClass kind)
{
    const auto ids = gateway.GetModel().GetIds(kind);
    return {ids.begin(), ids.end()};
}

[[nodiscard]] inline Candidates MakeCandidates(const qe::model::ModelBuilder& builder,
                                               IdClass joinClass)
{
    Candidates candidates{.gateway = std::make_unique<qe::model::ModelGateway>(builder.Build())};
    candidates.nodes = GetIds(*candidates.gateway, IdClassQuerySubject);
    candidates.joins = GetIds(*candidates.gateway, joinClass);
    return candidates;
}

/// Returns what a table says of a limit.
[[nodiscard]] inline const char* Judge(bool isHeld)
{
    return isHeld ? "ok" : "MISSED";
}

} // namespace qe::measure

#endif
