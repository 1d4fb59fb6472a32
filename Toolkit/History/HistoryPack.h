#ifndef TOOLKIT_HISTORY_HISTORYPACK_H
#define TOOLKIT_HISTORY_HISTORYPACK_H

#include "Toolkit/History/PastQuery.h"

#include <cstddef>
#include <iosfwd>
#include <span>

namespace qe::tool {

/// Writes queries as a history that holds tables, columns and counts and nothing else: one line of
/// JSON for all that have the same tables and pairs, in the order of these. Queries of the same
/// text count once. Returns the number of lines.
std::size_t WritePack(std::ostream& out, std::span<const PastQuery> queries);

} // namespace qe::tool

#endif
