#include "Toolkit/Import/PostgreSql/PostgresParser.h"

#include "Toolkit/Import/Ddl/SqlTokens.h"

#include <nlohmann/json.hpp>
#include <pg_query.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

/// How deep a tree may get. The parser writes it by calling itself for each level, and needs up to
/// a quarter of the usual stack for so many.
constexpr std::size_t kDeepest = 10'000;

/// Returns whether the tree may get deeper than that: what stands between two commas may all be
/// nested, and so may what stands around the parentheses that it stands in. The tables of a CREATE
/// SCHEMA are not nested.
bool IsTooDeep(std::string_view statement)
{
    SqlTokenizer tokens(statement, EDialect::PostgreSql);
    std::vector<std::size_t> open{0};
    std::size_t depth = 0;
    for (SqlToken token = tokens.Next(); token.kind != EToken::End; token = tokens.Next()) {
        if (token.IsSign(',') || (open.size() == 1 && token.IsWord("create"))) {
            depth -= open.back();
            open.back() = 0;
            continue;
        }
        if (token.IsSign(')') && open.size() > 1) {
            depth -= open.back();
            open.pop_back();
        }
        ++open.back();
        if (++depth > kDeepest)
            return true;
        if (token.IsSign('('))
            open.push_back(0);
    }
    return false;
}

struct ResultFreer
{
    void operator()(PgQueryParseResult* result) const
    {
        pg_query_free_parse_result(*result);
        delete result;
    }
};

} // namespace

nlohmann::json ParsePostgres(std::string_view statement)
{
    if (statement.size() > kLongestPostgres)
        throw PostgresSyntaxError("the statement is too long", 0);
    if (IsTooDeep(statement))
        throw PostgresSyntaxError("nested too deeply", 0);
    const std::string text(statement);
    const std::unique_ptr<PgQueryParseResult, ResultFreer> result(
        new PgQueryParseResult(pg_query_parse(text.c_str())));
    if (result->error != nullptr) {
        const auto place = static_cast<std::size_t>(std::max(0, result->error->cursorpos));
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(place, text.size()));
        throw PostgresSyntaxError(result->error->message,
                                  static_cast<std::size_t>(std::count(text.begin(), end, '\n')));
    }
    nlohmann::json tree = nlohmann::json::parse(result->parse_tree, nullptr, false);
    if (tree.is_discarded() || tree["stmts"].size() != 1)
        throw PostgresSyntaxError("no single statement", 0);
    // Deep trees are moved: copies would call themselves for each level.
    return std::move(tree["stmts"][0]["stmt"]);
}

} // namespace qe::tool
