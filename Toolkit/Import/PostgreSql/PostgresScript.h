#ifndef TOOLKIT_IMPORT_POSTGRESQL_POSTGRESSCRIPT_H
#define TOOLKIT_IMPORT_POSTGRESQL_POSTGRESSCRIPT_H

#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <span>

namespace qe::tool {

/// Returns what scripts for psql declare, as PostgreSQL's own parser reads them. A statement that
/// it cannot read is noted, and read as far as it can be read without it. Linear in the size of the
/// scripts.
[[nodiscard]] DatabaseSchema ReadPostgresScripts(std::span<const ScriptText> scripts,
                                                 const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
