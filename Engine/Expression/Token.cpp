#include "Engine/Expression/Token.h"

#include "Engine/Services/Utf8.h"

namespace qe::expression {

std::string GetValue(const Token& token)
{
    const char close = token.text.back();
    std::string value;
    for (std::size_t i = 1; i + 1 < token.text.size(); ++i) {
        value += token.text[i];
        if (token.text[i] == close)
            ++i;
    }
    return value;
}

std::string Describe(const Token& token)
{
    constexpr std::size_t longest = 40;
    if (token.kind == ETokenKind::End)
        return "the end of the text";
    if (token.text.size() <= longest)
        return '"' + std::string(token.text) + '"';
    return '"' + std::string(CutUtf8(token.text, longest)) + "...\"";
}

} // namespace qe::expression
