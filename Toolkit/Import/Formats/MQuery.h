#ifndef TOOLKIT_IMPORT_FORMATS_MQUERY_H
#define TOOLKIT_IMPORT_FORMATS_MQUERY_H

#include "Toolkit/Import/Formats/PlainSelect.h"

#include <optional>
#include <string_view>

namespace qe::tool {

/// Returns the table that a query in M reads, where all that it does besides is to choose, rename,
/// order or type columns. Returns nothing where it does more, such as filter, group or join, or
/// where what it does cannot be seen.
[[nodiscard]] std::optional<QueriedTable> SeeThroughM(std::string_view query);

} // namespace qe::tool

#endif
