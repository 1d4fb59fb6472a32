#include "Engine/Model/QualifiedName.h"

namespace qe::model {

namespace {

/// Reads the bracketed part that starts at `position` and moves behind it.
std::string ReadBracketed(std::string_view text, std::size_t& position)
{
    std::string part;
    for (++position; position < text.size(); ++position) {
        if (text[position] == ']') {
            ++position;
            if (position == text.size() || text[position] != ']')
                break;
        }
        part += text[position];
    }
    return part;
}

void AppendBracketed(std::string& text, std::string_view part)
{
    text += '[';
    for (const char letter : part)
        text.append(letter == ']' ? 2 : 1, letter);
    text += ']';
}

} // namespace

QualifiedName ParseQualifiedName(std::string_view text)
{
    QualifiedName parts(1);
    std::size_t position = 0;
    while (position < text.size()) {
        if (text[position] == '.') {
            parts.emplace_back();
            ++position;
        } else if (text[position] == '[' && parts.back().empty()) {
            parts.back() = ReadBracketed(text, position);
        } else {
            parts.back() += text[position++];
        }
    }
    return parts;
}

std::string ToText(const QualifiedName& name)
{
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (i > 0)
            text += '.';
        if (name[i].find_first_of(".[]") == std::string::npos)
            text += name[i];
        else
            AppendBracketed(text, name[i]);
    }
    return text;
}

std::string ToReferenceText(const QualifiedName& name)
{
    std::string text;
    for (const std::string& part : name) {
        if (!text.empty())
            text += '.';
        AppendBracketed(text, part);
    }
    return text;
}

} // namespace qe::model
