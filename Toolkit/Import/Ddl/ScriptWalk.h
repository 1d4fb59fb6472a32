#ifndef TOOLKIT_IMPORT_DDL_SCRIPTWALK_H
#define TOOLKIT_IMPORT_DDL_SCRIPTWALK_H

#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Ddl/StatementReader.h"
#include "Toolkit/Text/Progress.h"

#include <functional>
#include <span>

namespace qe::tool {

/// Calls `read` with each statement of the scripts, one script after the other. Tells where a quote
/// or comment does not end.
void WalkScripts(std::span<const ScriptText> scripts, EDialect dialect, ReadingNotes& notes,
                 const ProgressObserver& observer,
                 const std::function<void(const ScriptStatement&, const ScriptPlace&)>& read);

} // namespace qe::tool

#endif
