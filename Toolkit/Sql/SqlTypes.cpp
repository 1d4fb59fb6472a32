#include "Toolkit/Sql/SqlTypes.h"

#include "Engine/Services/Characters.h"

#include <algorithm>

namespace qe::tool {

namespace {

/// The words by which dialects know the types, in the order of TypeForms, each with a blank before
/// and behind it.
constexpr std::array<std::string_view, kTypeCount> kWords{
    " text varchar varchar2 nvarchar nvarchar2 string char nchar character ",
    " int integer int4 signed smallint int2 ",
    " bigint int8 ",
    " decimal numeric number dec ",
    " double real float float8 ",
    " boolean bool ",
    " timestamp datetime datetime2 ",
};

/// Two words that are one type.
std::string JoinWords(const std::string& type)
{
    if (type == "character varying" || type == "char varying")
        return "varchar";
    return type == "double precision" ? "double" : type;
}

} // namespace

std::string WriteType(const std::string& type, const TypeForms& forms)
{
    const std::size_t opening = std::min(type.find('('), type.size());
    const std::string word = ' ' + JoinWords(ascii::ToLower(type.substr(0, opening))) + ' ';
    const std::string sizes = type.substr(opening);
    const bool isPlain = sizes.empty() || sizes.find(')') + 1 == sizes.size();
    for (std::size_t i = 0; isPlain && i < kTypeCount; ++i) {
        if (kWords[i].find(word) == std::string_view::npos || forms[i].plain.empty())
            continue;
        const bool isSized = !sizes.empty() && !forms[i].sized.empty();
        return isSized ? std::string(forms[i].sized) + sizes : std::string(forms[i].plain);
    }
    return type;
}

} // namespace qe::tool
