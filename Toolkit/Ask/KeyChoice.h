#ifndef TOOLKIT_ASK_KEYCHOICE_H
#define TOOLKIT_ASK_KEYCHOICE_H

#include "Engine/Model/Names.h"
#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/PathSieve.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::model {
class Model;
}

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

/// Returns how many of the alternatives have the least weight: they come first.
[[nodiscard]] std::size_t CountLeastWeight(const Answer& answer);

class KeyMeasures;

/// Keeps those whose keys speak for them: fewest differing words, then most column pairs, then
/// fewest optional joins.
void KeepBestKeys(PathSieve& sieve, const Answer& answer, KeyMeasures& measures);

/// Keeps those that the ranking, by the criteria that are on, puts level with the first that is
/// left.
void KeepBestRanked(PathSieve& sieve, const Answer& answer, const RankingSwitches& ranking);

/// Returns the choice, among the alternatives of least weight, that the keys speak for; the first
/// when there are none. The first of these that differs decides:
/// 1. fewer words by which the names of joined columns differ: orders.customerId leads to
///    customer.customerId sooner than orders.approvedByCustomerId does;
/// 2. more pairs of columns: a composite key leads to the nearer owner, such as the item of an
///    order rather than the order;
/// 3. fewer joins that may find no row, having no end of exactly one;
/// 4. the criteria of the ranking;
/// 5. referring columns that stand earlier in their tables: who designs a table puts the principal
///    role first;
/// 6. the names of the joins.
[[nodiscard]] PathChoice ChooseByKeys(const model::Model& model, const Answer& answer,
                                      const RankingSwitches& ranking);

/// Returns the words of a name, in lower case (A to Z): it is split at everything but letters and
/// digits, and where capitals begin a word, as in "orderItemID" or "HTTPServer". Bytes beyond ASCII
/// count as letters.
[[nodiscard]] std::vector<std::string> SplitWords(std::string_view name);

} // namespace qe::tool

#endif
