#ifndef BENCHMARKS_SCHEMAGRAPHS_H
#define BENCHMARKS_SCHEMAGRAPHS_H

#include "Tests/Support/SteinerGraphReader.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <random>
#include <string>
#include <vector>

namespace qe::graph {

/// A kind of graph that tables and their joins form, at any size.
struct SchemaShape
{
    std::string name;
    /// Draws the edges, which leave no node alone; weights come later.
    std::function<std::vector<Edge>(std::uint32_t nodeCount, std::mt19937& random)> draw;
};

/// Returns star, snowflake, several facts that share dimensions, and facts that join a dimension
/// in several roles.
[[nodiscard]] std::vector<SchemaShape> GetSchemaShapes();

/// Reads which tables the foreign keys of a DDL script connect: one edge a key.
[[nodiscard]] std::vector<Edge> ReadForeignKeys(std::istream& script);

/// Lets the edges weigh what joins weigh, in turn, and draws terminals from the largest part.
[[nodiscard]] SteinerGraph MakeSchemaGraph(std::vector<Edge> edges, std::uint32_t terminalCount,
                                           std::mt19937& random);

/// Draws a dense graph with equal weights and 40 terminals, on which exact search is hopeless.
[[nodiscard]] SteinerGraph DrawHostileGraph();

} // namespace qe::graph

#endif
