#include "Toolkit/Import/Live/NamePatterns.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

using Patterns = std::vector<std::string>;

bool Matches(std::string_view pattern, std::string_view name)
{
    // Where the last "*" stands, and what it has taken of the name: more, when the rest fails.
    std::size_t star = std::string_view::npos;
    std::size_t taken = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            taken = i;
        } else if (at < pattern.size() &&
                   (pattern[at] == '?' || ascii::ToLower(pattern[at]) == ascii::ToLower(name[i]))) {
            ++at;
            ++i;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            i = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

bool MatchesAny(const Patterns& patterns, const std::string& name)
{
    return patterns.empty() || std::any_of(patterns.begin(), patterns.end(),
                                           [&](const auto& each) { return Matches(each, name); });
}

/// Throws a PatternError when one of the patterns matches none of the names.
void RequireMatches(const Patterns& patterns, const std::set<std::string>& names, const char* place)
{
    std::vector<InputProblem> problems;
    for (const std::string& pattern : patterns)
        if (std::none_of(names.begin(), names.end(),
                         [&pattern](const auto& name) { return Matches(pattern, name); }))
            problems.push_back(
                {.place = place,
                 .text = "matches nothing: \"" + pattern + '"',
                 .nearestNames = model::NearestNames(pattern, {names.begin(), names.end()})});
    if (!problems.empty())
        throw PatternError(std::move(problems));
}

} // namespace

void SelectTables(LiveListing& listing, const TablePatterns& patterns)
{
    std::set<std::string> schemas;
    for (const LiveTable& table : listing.tables)
        schemas.insert(table.name.schema);
    RequireMatches(patterns.schemas, schemas, "schemas");
    std::erase_if(listing.tables, [&](const LiveTable& table) {
        return !MatchesAny(patterns.schemas, table.name.schema);
    });
    std::set<std::string> tables;
    for (const LiveTable& table : listing.tables)
        tables.insert(table.name.name);
    RequireMatches(patterns.tables, tables, "tables");
    std::erase_if(listing.tables, [&](const LiveTable& table) {
        return !MatchesAny(patterns.tables, table.name.name);
    });
}

} // namespace qe::tool
