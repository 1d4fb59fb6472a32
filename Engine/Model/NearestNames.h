#ifndef ENGINE_MODEL_NEARESTNAMES_H
#define ENGINE_MODEL_NEARESTNAMES_H

#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::model {

/// Returns the text in lower case, as names are compared when letter case does not count: the
/// letters of ASCII and Latin-1 are folded, all other characters stand for themselves.
[[nodiscard]] QEENGINE_EXPORT std::string FoldCase(std::string_view text);

/// Returns the number of insertions, deletions, replacements and swaps of neighbours that lead from
/// one text to the other (optimal string alignment, no part edited twice), bytes being the letters.
/// A distance above `limit` may come out as any number above it.
/// Costs O(limit * length).
[[nodiscard]] QEENGINE_EXPORT std::size_t EditDistance(std::string_view left,
                                                       std::string_view right, std::size_t limit);

/// Returns up to `count` of the candidates that come near enough to `wrong` to be what was meant,
/// each once: at most a third of its letters may differ (at least one), letter case aside. Nearest
/// first, then in code unit order.
[[nodiscard]] QEENGINE_EXPORT std::vector<std::string>
NearestNames(std::string_view wrong, const std::vector<std::string_view>& candidates,
             std::size_t count = 3);

} // namespace qe::model

#endif
