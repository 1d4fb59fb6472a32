#ifndef TOOLKIT_IMPORT_LIVE_POSTGRESSERVER_H
#define TOOLKIT_IMPORT_LIVE_POSTGRESSERVER_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <memory>
#include <string>

namespace qe::tool {

/// Returns a connection to the PostgreSQL server of the URL. Throws an InputError when there is
/// none.
[[nodiscard]] std::unique_ptr<LiveServer> ConnectPostgres(const std::string& url,
                                                          const ServerTimeLimits& limits);

} // namespace qe::tool

#endif
