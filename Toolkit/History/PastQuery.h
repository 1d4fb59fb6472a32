#ifndef TOOLKIT_HISTORY_PASTQUERY_H
#define TOOLKIT_HISTORY_PASTQUERY_H

#include "Toolkit/History/NamedPairs.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What people once asked for, and how they joined it.
struct PastQuery
{
    /// Where it stands, such as "log.jsonl:12".
    std::string place{};
    /// What it calls itself; may be empty.
    std::string id{};
    /// The model that it is about where a history tells of several; may be empty.
    std::string database{};
    /// In lower case (A to Z), in order, each once.
    std::vector<std::string> tables{};
    /// In order, each once, the lesser column first.
    std::vector<NamedPair> pairs{};
    /// Tells it from others. Where it is empty, tables and pairs do.
    std::string text{};
    /// How many queries of different texts it stands for.
    std::size_t count = 1;
};

/// Returns the table that the name of a query subject, as people write it, is about.
[[nodiscard]] std::string ToTableName(std::string_view subject);

/// Puts tables and pairs in order, and the tables of the pairs among the tables.
void Normalise(PastQuery& query);

/// Returns what queries with the same tables and pairs have in common.
[[nodiscard]] std::string JoinsKey(const PastQuery& query);

/// Returns what queries of the same text have in common: two queries with equal keys count once.
[[nodiscard]] std::string TextKey(const PastQuery& query);

} // namespace qe::tool

#endif
