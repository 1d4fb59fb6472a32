#ifndef BENCHMARKS_GALAXY_H
#define BENCHMARKS_GALAXY_H

#include "Toolkit/Model/ToolModel.h"

#include <cstddef>
#include <string>
#include <vector>

/// A large warehouse: namespaces of 500 tables, 100 of them facts. Each fact refers to four
/// dimensions, one of them in the next namespace, and each dimension but those at the top to one
/// before it; every table has eight items and every join a condition.
struct GalaxySize
{
    /// A multiple of 500; there are 8 joins to 5 tables, but for the dimensions at the top.
    std::size_t tables = 5000;
};

[[nodiscard]] qe::tool::ToolModel MakeGalaxy(const GalaxySize& size);

/// Returns requests as `qerefine batch` reads them, one a line: a fact, its four dimensions and the
/// tables to which these refer.
[[nodiscard]] std::vector<std::string> MakeGalaxyRequests(const GalaxySize& size,
                                                          std::size_t count);

#endif
