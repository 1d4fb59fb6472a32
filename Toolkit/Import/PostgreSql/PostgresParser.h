#ifndef TOOLKIT_IMPORT_POSTGRESQL_POSTGRESPARSER_H
#define TOOLKIT_IMPORT_POSTGRESQL_POSTGRESPARSER_H

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qe::tool {

/// What PostgreSQL's parser says of a statement that it cannot read.
class PostgresSyntaxError : public std::runtime_error
{
public:
    /// Takes the number of the line, counted from the statement's own.
    PostgresSyntaxError(const std::string& text, std::size_t line)
        : std::runtime_error(text), mLine(line)
    {}

    [[nodiscard]] std::size_t GetLine() const noexcept { return mLine; }

private:
    std::size_t mLine;
};

/// In bytes. Trees take hundreds of bytes for each byte of a statement.
inline constexpr std::size_t kLongestPostgres = std::size_t{1} << 20;

/// Returns the tree that PostgreSQL's own parser makes of a statement: an object whose only key is
/// the kind of the statement. Throws a PostgresSyntaxError when there is none, also when the
/// statement is longer than kLongestPostgres, or nested so deeply that the parser would run out of
/// stack. Linear in the size of the statement.
[[nodiscard]] nlohmann::json ParsePostgres(std::string_view statement);

} // namespace qe::tool

#endif
