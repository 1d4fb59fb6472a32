#ifndef TOOLKIT_ASK_COLUMNPAIRS_H
#define TOOLKIT_ASK_COLUMNPAIRS_H

#include "Engine/Model/Names.h"

#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A column as a condition names it.
struct Column
{
    /// The names before the column's: the subject's, perhaps behind its namespace's.
    model::QualifiedName subject{};
    std::string name{};

    friend bool operator==(const Column&, const Column&) = default;
};

/// Two columns of different subjects that a condition compares.
struct ColumnPair
{
    Column left{};
    Column right{};

    friend bool operator==(const ColumnPair&, const ColumnPair&) = default;
};

/// Returns the pairs of columns that a join condition names one after the other, in reading order:
/// one for each part of a composite key. Columns of one and the same subject make no pair. A text
/// that is no expression gives the pairs before its fault.
[[nodiscard]] std::vector<ColumnPair> FindColumnPairs(const std::string& condition);

/// Returns the words of a name, in lower case (A to Z): it is split at everything but letters and
/// digits, and where capitals begin a word, as in "orderItemID" or "HTTPServer". Bytes beyond ASCII
/// count as letters.
[[nodiscard]] std::vector<std::string> SplitWords(std::string_view name);

} // namespace qe::tool

#endif
