#ifndef ENGINE_MODEL_NAMES_H
#define ENGINE_MODEL_NAMES_H

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

/// The names that lead to an object, outermost first, such as namespace, query subject, item.
using QualifiedName = std::vector<std::string>;

/// Returns the parts of `text` between its dots. A part that holds dots or brackets stands in
/// brackets, where "]]" means one closing bracket: "Sales.[Order.Lines].Id" has three parts. An
/// opening bracket that is never closed reaches to the end of the text.
[[nodiscard]] QEENGINE_EXPORT QualifiedName ParseQualifiedName(std::string_view text);

/// Returns the parts with dots between, in brackets where needed, so that parsing yields them
/// again.
[[nodiscard]] QEENGINE_EXPORT std::string ToText(const QualifiedName& name);

/// Returns the reference to the object as conditions write it: every part in brackets.
[[nodiscard]] QEENGINE_EXPORT std::string ToReferenceText(const QualifiedName& name);

} // namespace qe::model

#endif
