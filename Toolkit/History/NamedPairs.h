#ifndef TOOLKIT_HISTORY_NAMEDPAIRS_H
#define TOOLKIT_HISTORY_NAMEDPAIRS_H

#include "amd_id.h"

#include <string>
#include <utility>
#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Two columns that are joined, each as "table.column" in lower case (A to Z).
using NamedPair = std::pair<std::string, std::string>;

/// Returns the name of a column as pairs hold it.
[[nodiscard]] std::string ToColumnName(const std::string& table, const std::string& column);

/// Returns the pairs of columns of a join condition between two ends; shortcuts go by the name of
/// what they stand for.
[[nodiscard]] std::vector<NamedPair> FindNamedPairs(const model::Model& model, const amd_id& left,
                                                    const amd_id& right,
                                                    const std::string& condition);

} // namespace qe::tool

#endif
