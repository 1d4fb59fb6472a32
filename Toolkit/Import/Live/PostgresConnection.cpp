#include "Toolkit/Import/Live/PostgresConnection.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Import/Live/ServerFailure.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <poll.h>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Parameters = std::vector<std::pair<std::string, std::string>>;

/// How much longer than the server's own limit its answer is waited for.
constexpr std::chrono::seconds kGrace{5};

bool Has(const Parameters& parameters, std::string_view name)
{
    return std::any_of(parameters.begin(), parameters.end(),
                       [name](const auto& each) { return each.first == name; });
}

/// Throws an InputError when libpq knows no such parameter.
void RequireKnown(const Parameters& parameters, const std::string& place)
{
    struct Free
    {
        void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
    };
    const std::unique_ptr<PQconninfoOption, Free> known(PQconndefaults());
    std::vector<std::string_view> names;
    for (const PQconninfoOption* option = known.get(); option && option->keyword; ++option)
        names.emplace_back(option->keyword);
    for (const auto& [name, value] : parameters)
        if (std::find(names.begin(), names.end(), name) == names.end())
            throw InputError({{place, "no parameter of PostgreSQL's connections: \"" + name + '"',
                               model::NearestNames(name, names)}});
}

/// Returns what libpq is given; what stands in the URL's parameters counts.
Parameters ListParameters(const ServerUrl& url, const ServerTimeLimits& limits)
{
    Parameters parameters = url.parameters;
    const Parameters others{{"user", url.user},
                            {"host", url.hosts},
                            {"port", url.ports},
                            {"dbname", url.database},
                            {"application_name", "qerefine"},
                            {"connect_timeout", std::to_string(limits.connect.count())}};
    for (const auto& [name, value] : others)
        if (!value.empty() && !Has(parameters, name))
            parameters.emplace_back(name, value);
    if (const auto encoding =
            std::find_if(parameters.begin(), parameters.end(),
                         [](const auto& p) { return p.first == "client_encoding"; });
        encoding != parameters.end())
        parameters.erase(encoding);
    parameters.emplace_back("client_encoding", "UTF8");
    return parameters;
}

PGconn* Connect(const Parameters& parameters)
{
    std::vector<const char*> names;
    std::vector<const char*> values;
    for (const auto& [name, value] : parameters) {
        names.push_back(name.c_str());
        values.push_back(value.c_str());
    }
    names.push_back(nullptr);
    values.push_back(nullptr);
    return PQconnectdbParams(names.data(), values.data(), 0);
}

} // namespace

std::string PostgresRows::Get(std::size_t row, int column) const
{
    const int index = static_cast<int>(row);
    return {PQgetvalue(mResult.get(), index, column),
            static_cast<std::size_t>(PQgetlength(mResult.get(), index, column))};
}

PostgresConnection::PostgresConnection(const ServerUrl& url, std::string place,
                                       const ServerTimeLimits& limits)
    : mPlace(std::move(place)), mLimit(limits.statement)
{
    RequireKnown(url.parameters, mPlace);
    mConnection.reset(Connect(ListParameters(url, limits)));
    if (mConnection == nullptr || PQstatus(mConnection.get()) != CONNECTION_OK)
        Fail(PQerrorMessage(mConnection.get()));
    // What a server remarks is not for this user.
    PQsetNoticeProcessor(
        mConnection.get(), [](void*, const char*) {}, nullptr);
}

PostgresRows PostgresConnection::Query(const char* statement,
                                       const std::optional<std::string>& parameter)
{
    const char* const value = parameter ? parameter->c_str() : nullptr;
    if (PQsendQueryParams(mConnection.get(), statement, parameter ? 1 : 0, nullptr, &value, nullptr,
                          nullptr, 0) == 0)
        Fail(PQerrorMessage(mConnection.get()));
    AwaitAnswer();
    PGresult* const result = PQgetResult(mConnection.get());
    PostgresRows rows(result);
    const ExecStatusType status = PQresultStatus(result);
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK)
        Fail(result == nullptr ? PQerrorMessage(mConnection.get()) : PQresultErrorMessage(result));
    while (PGresult* const rest = PQgetResult(mConnection.get()))
        PQclear(rest);
    return rows;
}

void PostgresConnection::AwaitAnswer()
{
    constexpr int kForever = -1;
    const bool isLimited = mLimit.count() > 0;
    const auto end = std::chrono::steady_clock::now() + mLimit + kGrace;
    while (PQisBusy(mConnection.get()) != 0) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (isLimited && left.count() <= 0)
            Fail("the server does not answer");
        pollfd socket{.fd = PQsocket(mConnection.get()), .events = POLLIN, .revents = 0};
        const int patience = isLimited ? static_cast<int>(left.count()) : kForever;
        if (poll(&socket, 1, patience) > 0 && PQconsumeInput(mConnection.get()) == 0)
            Fail(PQerrorMessage(mConnection.get()));
    }
}

void PostgresConnection::Fail(std::string_view text) const
{
    ThrowServerFailure(mPlace, text);
}

} // namespace qe::tool
