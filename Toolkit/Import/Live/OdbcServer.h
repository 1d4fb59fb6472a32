#ifndef TOOLKIT_IMPORT_LIVE_ODBCSERVER_H
#define TOOLKIT_IMPORT_LIVE_ODBCSERVER_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <memory>
#include <string>

namespace qe::tool {

/// Returns a connection through an ODBC driver, such as that of
/// "odbc:Driver=SQLite3;Database=x.db". Throws an InputError when there is none.
[[nodiscard]] std::unique_ptr<LiveServer> ConnectOdbc(const std::string& url,
                                                      const ServerTimeLimits& limits);

} // namespace qe::tool

#endif
