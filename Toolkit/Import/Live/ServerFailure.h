#ifndef TOOLKIT_IMPORT_LIVE_SERVERFAILURE_H
#define TOOLKIT_IMPORT_LIVE_SERVERFAILURE_H

#include <string>
#include <string_view>

namespace qe::tool {

/// Throws an InputError with what a server or its library says, on one line.
[[noreturn]] void ThrowServerFailure(const std::string& place, std::string_view said);

} // namespace qe::tool

#endif
