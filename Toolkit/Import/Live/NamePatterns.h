#ifndef TOOLKIT_IMPORT_LIVE_NAMEPATTERNS_H
#define TOOLKIT_IMPORT_LIVE_NAMEPATTERNS_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

namespace qe::tool {

/// Leaves the tables of the listing that the patterns match. Throws a PatternError with the nearest
/// names for patterns that match nothing.
void SelectTables(LiveListing& listing, const TablePatterns& patterns);

} // namespace qe::tool

#endif
