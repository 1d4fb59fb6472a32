#include "Toolkit/Import/Live/MariaDbConnection.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Live/ServerFailure.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::string_view kSocket = "socket";
constexpr std::string_view kConnectTimeout = "connect_timeout";

void RequireKnown(const ServerUrl& url, const std::string& place)
{
    for (const auto& [name, value] : url.parameters)
        if (name != kSocket && name != kConnectTimeout)
            throw InputError({{place, "no parameter of MySQL's URLs: \"" + name + '"',
                               model::NearestNames(name, {kSocket, kConnectTimeout})}});
}

/// Returns the value of the parameter; empty when the URL has none.
std::string FindParameter(const ServerUrl& url, std::string_view wanted)
{
    for (const auto& [name, value] : url.parameters)
        if (name == wanted)
            return value;
    return {};
}

unsigned ToNumber(const std::string& text, unsigned otherwise)
{
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number == 0 ? otherwise : number;
}

/// The library takes more for a host than a host.
void RequireOneHost(const ServerUrl& url, const std::string& place)
{
    const bool isHost = std::all_of(url.hosts.begin(), url.hosts.end(), [](char c) {
        return ascii::IsLetter(c) || ascii::IsDigit(c) ||
               std::string_view(".:-_").find(c) != std::string_view::npos;
    });
    if (!isHost)
        throw InputError({{place, "names no host"}});
}

const char* ToNullable(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

} // namespace

MariaDbConnection::MariaDbConnection(const ServerUrl& url, std::string place,
                                     const ServerTimeLimits& limits)
    : mPlace(std::move(place)), mConnection(mysql_init(nullptr))
{
    RequireKnown(url, mPlace);
    RequireOneHost(url, mPlace);
    if (mConnection == nullptr)
        ThrowServerFailure(mPlace, "out of memory");
    SetOptions(ToNumber(FindParameter(url, kConnectTimeout),
                        static_cast<unsigned>(limits.connect.count())),
               static_cast<unsigned>(limits.statement.count()));
    const std::string socket = FindParameter(url, kSocket);
    // The password comes from the environment or a file of options.
    if (mysql_real_connect(mConnection.get(), ToNullable(url.hosts), ToNullable(url.user), nullptr,
                           ToNullable(url.database), ToNumber(url.ports, 0), ToNullable(socket),
                           0) == nullptr)
        Fail();
}

void MariaDbConnection::SetOptions(unsigned connect, unsigned statement)
{
    // The server ends a statement that takes too long; one that does not even answer is left.
    constexpr unsigned kGraceSeconds = 5;
    const unsigned answer = statement == 0 ? 0 : statement + kGraceSeconds;
    const unsigned noLocalFiles = 0;
    MYSQL* const connection = mConnection.get();
    mysql_options(connection, MYSQL_READ_DEFAULT_GROUP, "client");
    mysql_options(connection, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    mysql_options(connection, MYSQL_OPT_CONNECT_TIMEOUT, &connect);
    mysql_options(connection, MYSQL_OPT_READ_TIMEOUT, &answer);
    mysql_options(connection, MYSQL_OPT_WRITE_TIMEOUT, &answer);
    mysql_options(connection, MYSQL_OPT_LOCAL_INFILE, &noLocalFiles);
}

std::string MariaDbConnection::GetVersion() const
{
    return mysql_get_server_info(mConnection.get());
}

std::string MariaDbConnection::Quote(const std::string& text) const
{
    std::string quoted(2 * text.size() + 1, '\0');
    quoted.resize(mysql_real_escape_string(mConnection.get(), quoted.data(), text.data(),
                                           static_cast<unsigned long>(text.size())));
    return '\'' + quoted + '\'';
}

std::vector<MariaDbConnection::Row> MariaDbConnection::Query(const std::string& statement)
{
    struct Free
    {
        void operator()(MYSQL_RES* result) const { mysql_free_result(result); }
    };
    if (mysql_real_query(mConnection.get(), statement.data(),
                         static_cast<unsigned long>(statement.size())) != 0)
        Fail();
    const std::unique_ptr<MYSQL_RES, Free> result(mysql_store_result(mConnection.get()));
    if (result == nullptr && mysql_errno(mConnection.get()) != 0)
        Fail();
    std::vector<Row> rows;
    if (result == nullptr)
        return rows;
    const unsigned columns = mysql_num_fields(result.get());
    while (char** const values = mysql_fetch_row(result.get())) {
        const unsigned long* const lengths = mysql_fetch_lengths(result.get());
        Row& row = rows.emplace_back();
        for (unsigned i = 0; i < columns; ++i)
            row.emplace_back(values[i] == nullptr ? "" : values[i], lengths[i]);
    }
    return rows;
}

void MariaDbConnection::Fail() const
{
    ThrowServerFailure(mPlace, mysql_error(mConnection.get()));
}

} // namespace qe::tool
