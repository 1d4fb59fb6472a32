#include "Toolkit/Text/PlainText.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DisplayText.h"

namespace qe::tool {

std::string ReplaceHarmful(std::string_view text, char substitute)
{
    std::string replaced;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, ReadUtf8(text).bytes);
        if (ToDisplayText(piece) == piece)
            replaced += piece;
        else
            replaced += substitute;
        text.remove_prefix(piece.size());
    }
    return replaced;
}

std::string ShortenText(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return std::string(text);
    std::size_t end = 0;
    for (std::size_t next = 0; next <= bytes; next += ReadUtf8(text.substr(next)).bytes)
        end = next;
    return std::string(text.substr(0, end)) + "\u2026";
}

} // namespace qe::tool
