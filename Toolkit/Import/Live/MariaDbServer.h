#ifndef TOOLKIT_IMPORT_LIVE_MARIADBSERVER_H
#define TOOLKIT_IMPORT_LIVE_MARIADBSERVER_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <memory>
#include <string>

namespace qe::tool {

/// Returns a connection to the MySQL or MariaDB server of the URL. Throws an InputError when there
/// is none.
[[nodiscard]] std::unique_ptr<LiveServer> ConnectMariaDb(const std::string& url,
                                                         const ServerTimeLimits& limits);

} // namespace qe::tool

#endif
