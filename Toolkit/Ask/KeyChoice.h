#ifndef TOOLKIT_ASK_KEYCHOICE_H
#define TOOLKIT_ASK_KEYCHOICE_H

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/PathSieve.h"

#include <cstddef>

namespace qe::model {
class Model;
}

namespace qe::tool {

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

} // namespace qe::tool

#endif
