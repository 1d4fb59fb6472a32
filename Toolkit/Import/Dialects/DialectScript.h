#ifndef TOOLKIT_IMPORT_DIALECTS_DIALECTSCRIPT_H
#define TOOLKIT_IMPORT_DIALECTS_DIALECTSCRIPT_H

#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <span>

namespace qe::tool {

/// Returns what the scripts declare, read statement by statement without a server of the dialect:
/// what says nothing on tables and keys is passed over, what cannot be read is noted. Linear in the
/// size of the scripts.
[[nodiscard]] DatabaseSchema ReadDialectScripts(std::span<const ScriptText> scripts,
                                                EDialect dialect,
                                                const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
