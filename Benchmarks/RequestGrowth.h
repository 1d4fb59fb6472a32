#ifndef BENCHMARKS_REQUESTGROWTH_H
#define BENCHMARKS_REQUESTGROWTH_H

#include <functional>
#include <string_view>

namespace qe::measure {

/// Prints how what was quadratic or worse grows with its size: the parts that are wanted of
/// "pairwise", "facts" and "groups".
void MeasureGrowth(const std::function<bool(std::string_view)>& isWanted);

} // namespace qe::measure

#endif
