#ifndef TOOLKIT_IMPORT_LIVE_LIVESCHEMA_H
#define TOOLKIT_IMPORT_LIVE_LIVESCHEMA_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Import/Schema/ServerOptions.h"
#include "Toolkit/Text/Progress.h"

#include <string>
#include <string_view>

namespace qe::tool {

/// Returns whether the text names a database on a server, as the schemes of URLs tell.
[[nodiscard]] bool IsServerUrl(std::string_view text);

/// Returns the URL as it may be shown: without users and whatever else is not for all eyes. Other
/// texts stay as they are.
[[nodiscard]] std::string ToShownModelName(std::string_view text);

/// Returns what the database of the URL declares, as one state of it, called after the database.
/// Nothing is changed there. Throws an InputError when it cannot be read, of one line when the
/// server is to blame, and a PatternError when a pattern matches no table.
[[nodiscard]] DatabaseSchema ReadServer(const std::string& url, const ServerOptions& options,
                                        const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
