#ifndef TOOLKIT_IMPORT_LIVE_SERVERKINDS_H
#define TOOLKIT_IMPORT_LIVE_SERVERKINDS_H

#include "Toolkit/Import/Live/LiveServer.h"
#include "Toolkit/Import/Schema/ServerOptions.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace qe::tool {

/// A kind of servers.
struct ServerKind
{
    /// What users call it.
    std::string_view word;
    /// What its URLs begin with.
    std::span<const std::string_view> schemes;
    /// What a URL may lack where only this kind is meant; empty for nothing.
    std::string_view impliedScheme;
    /// What talks to such servers.
    std::string_view library;
    /// Throws an InputError when no connection comes about. Null in a build without the library.
    std::unique_ptr<LiveServer> (*connect)(const std::string& url, const ServerTimeLimits& limits);
    std::string (*toShown)(std::string_view url);
    /// A URL of this kind.
    std::string_view example;
};

[[nodiscard]] std::span<const ServerKind> ListServerKinds();

/// Returns the kind of the URL; null when it is none.
[[nodiscard]] const ServerKind* FindServerKind(std::string_view url);

} // namespace qe::tool

#endif
