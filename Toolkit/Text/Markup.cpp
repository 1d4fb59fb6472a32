#include "Toolkit/Text/Markup.h"

#include "Toolkit/Text/DisplayText.h"

namespace qe::tool {

std::string EscapeMarkup(const std::string& text)
{
    std::string escaped;
    for (const char character : ToDisplayText(text)) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

} // namespace qe::tool
