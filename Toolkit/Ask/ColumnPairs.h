#ifndef TOOLKIT_ASK_COLUMNPAIRS_H
#define TOOLKIT_ASK_COLUMNPAIRS_H

#include <string>
#include <vector>

namespace qe::tool {

/// A column as a condition names it.
struct Column
{
    std::string subject{};
    std::string name{};

    friend bool operator==(const Column&, const Column&) = default;
};

/// Two columns of different subjects that a condition compares.
struct ColumnPair
{
    Column left{};
    Column right{};
};

/// Returns the pairs of columns that a join condition names one after the other, in reading order:
/// one for each part of a composite key. Columns of one and the same subject make no pair. A text
/// that is no expression gives the pairs before its fault.
[[nodiscard]] std::vector<ColumnPair> FindColumnPairs(const std::string& condition);

} // namespace qe::tool

#endif
