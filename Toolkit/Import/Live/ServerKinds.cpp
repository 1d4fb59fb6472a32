#include "Toolkit/Import/Live/ServerKinds.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Live/MariaDbServer.h"
#include "Toolkit/Import/Live/OdbcServer.h"
#include "Toolkit/Import/Live/OdbcText.h"
#include "Toolkit/Import/Live/PostgresServer.h"
#include "Toolkit/Import/Live/ServerUrl.h"

#include <algorithm>
#include <array>

namespace qe::tool {

namespace {

using Connect = decltype(ServerKind::connect);

// The build says which libraries there are.
#if QEREFINER_HAS_LIBPQ
constexpr Connect kConnectPostgres = ConnectPostgres;
#else
constexpr Connect kConnectPostgres = nullptr;
#endif
#if QEREFINER_HAS_LIBMARIADB
constexpr Connect kConnectMariaDb = ConnectMariaDb;
#else
constexpr Connect kConnectMariaDb = nullptr;
#endif
#if QEREFINER_HAS_ODBC
constexpr Connect kConnectOdbc = ConnectOdbc;
#else
constexpr Connect kConnectOdbc = nullptr;
#endif

constexpr std::array<std::string_view, 2> kPostgresSchemes{"postgresql://", "postgres://"};
constexpr std::array<std::string_view, 2> kMariaDbSchemes{"mysql://", "mariadb://"};
constexpr std::array<std::string_view, 1> kOdbcSchemes{kOdbcScheme};

constexpr std::array kKinds{
    ServerKind{.word = "postgresql",
               .schemes = kPostgresSchemes,
               .impliedScheme = {},
               .library = "libpq",
               .connect = kConnectPostgres,
               .toShown = ToShownUrl,
               .example = "postgresql://host/shop"},
    ServerKind{.word = "mysql",
               .schemes = kMariaDbSchemes,
               .impliedScheme = {},
               .library = "libmariadb",
               .connect = kConnectMariaDb,
               .toShown = ToShownUrl,
               .example = "mysql://host/shop"},
    ServerKind{.word = "odbc",
               .schemes = kOdbcSchemes,
               .impliedScheme = kOdbcScheme,
               .library = "unixODBC",
               .connect = kConnectOdbc,
               .toShown = ToShownOdbcUrl,
               .example = "odbc:DSN=shop"},
};

} // namespace

std::span<const ServerKind> ListServerKinds()
{
    return kKinds;
}

const ServerKind* FindServerKind(std::string_view url)
{
    const auto begins = [url](std::string_view scheme) {
        return ascii::ToLower(std::string(url.substr(0, scheme.size()))) == scheme;
    };
    const auto found = std::find_if(kKinds.begin(), kKinds.end(), [&](const ServerKind& kind) {
        return std::any_of(kind.schemes.begin(), kind.schemes.end(), begins);
    });
    return found == kKinds.end() ? nullptr : &*found;
}

} // namespace qe::tool
