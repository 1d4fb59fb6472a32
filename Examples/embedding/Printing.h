#ifndef EXAMPLES_EMBEDDING_PRINTING_H
#define EXAMPLES_EMBEDDING_PRINTING_H

#include "amd_id.h"

#include <string>
#include <vector>

namespace host {

/// Writes the names of objects with ", " between them; "nothing" when there are none.
[[nodiscard]] std::string ToLine(const std::vector<amd_id>& ids);

} // namespace host

#endif
