#ifndef TOOLKIT_HISTORY_RECORDREADER_H
#define TOOLKIT_HISTORY_RECORDREADER_H

#include "Toolkit/History/PastQuery.h"

#include <string_view>

namespace qe::tool {

/// Returns the past query that one line of JSON tells of: `subjects` (names) and `joins` (pairs of
/// "table.column"), both of which may be empty but not missing; `id`, `db`, `text` and `count` (how
/// many queries of different texts it stands for) as far as they are there. Other keys of requests
/// are passed over. The place stays empty. Throws InputError with all mistakes of the line.
[[nodiscard]] PastQuery ReadRecord(std::string_view line);

} // namespace qe::tool

#endif
