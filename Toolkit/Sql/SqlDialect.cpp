#include "Toolkit/Sql/SqlDialect.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

const SqlDialect* FindSqlDialect(std::string_view word)
{
    const std::span<const SqlDialect> dialects = GetSqlDialects();
    const auto found =
        std::find_if(dialects.begin(), dialects.end(),
                     [word](const SqlDialect& dialect) { return dialect.word == word; });
    return found == dialects.end() ? nullptr : &*found;
}

std::vector<std::string_view> ListSqlDialectWords()
{
    std::vector<std::string_view> words;
    for (const SqlDialect& dialect : GetSqlDialects())
        words.push_back(dialect.word);
    return words;
}

std::string FoldName(std::string name, EFolding folding)
{
    if (folding == EFolding::Lower)
        return ascii::ToLower(std::move(name));
    if (folding == EFolding::Upper)
        std::transform(name.begin(), name.end(), name.begin(), [](char c) {
            return ascii::IsLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
        });
    return name;
}

} // namespace qe::tool
