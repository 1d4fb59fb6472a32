#ifndef TOOLKIT_HISTORY_RECORDREADER_H
#define TOOLKIT_HISTORY_RECORDREADER_H

#include "Toolkit/History/PastQuery.h"

#include <string_view>
#include <vector>

namespace qe::tool {

class JsonObject;
class JsonProblems;

/// Returns the pairs of "table.column" in the list `joins` of a record or request, in lower case
/// and the lesser column first. Reports what is no such pair.
[[nodiscard]] std::vector<NamedPair> ReadNamedPairs(JsonObject& record, JsonProblems& problems);

/// Returns the past query that one line of JSON tells of: `subjects` (names) and `joins` (pairs of
/// "table.column"), both of which may be empty but not missing; `id`, `db`, `text` and `count` (how
/// many queries of different texts it stands for) as far as they are there. Other keys of requests
/// are passed over. The place stays empty. Throws InputError with all mistakes of the line.
[[nodiscard]] PastQuery ReadRecord(std::string_view line);

} // namespace qe::tool

#endif
