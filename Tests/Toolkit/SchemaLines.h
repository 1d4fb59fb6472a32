#ifndef TESTS_TOOLKIT_SCHEMALINES_H
#define TESTS_TOOLKIT_SCHEMALINES_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <set>
#include <string>
#include <vector>

namespace qe::test {

/// What a foreign key says.
struct JoinFacts
{
    std::string table{};
    std::vector<std::string> columns{};
    std::string target{};
    std::vector<std::string> referenced{};
    /// Whether the columns hold a key of the table.
    bool isUnique = false;
    bool isNotNull = false;
    bool isReferencedUnique = false;
};

/// Returns "key table (columns)"; the order of the columns does not count.
[[nodiscard]] std::string KeyLine(const std::string& table, std::vector<std::string> columns);

/// Returns "join table - target (columns = referenced)" and what holds of it.
[[nodiscard]] std::string JoinLine(const JoinFacts& facts);

/// Returns a line for each table, key and foreign key.
[[nodiscard]] std::set<std::string> DescribeSchema(const tool::DatabaseSchema& schema);

} // namespace qe::test

#endif
