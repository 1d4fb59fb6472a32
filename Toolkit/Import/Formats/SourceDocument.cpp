#include "Toolkit/Import/Formats/SourceDocument.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Formats/TmdlText.h"
#include "Toolkit/Import/Formats/YamlTemplates.h"
#include "Toolkit/Text/JsonText.h"
#include "Toolkit/Text/TextEdges.h"
#include "Toolkit/Text/YamlText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

/// What the first line of a TMDL text may begin with.
constexpr std::array<std::string_view, 17> kTmdlWords{
    "table ",          "model ",       "model\n",     "model\r", "relationship ", "ref ",
    "database ",       "database\n",   "database\r",  "///",     "culture ",      "expression ",
    "createOrReplace", "perspective ", "annotation ", "role ",   "queryGroup "};

/// Returns the text from the first line on that is neither empty nor a comment of YAML.
std::string_view SkipComments(std::string_view text)
{
    for (;;) {
        const std::size_t first = text.find_first_not_of(kBlanks);
        if (first == std::string_view::npos)
            return {};
        text.remove_prefix(first);
        if (text.front() != '#')
            return text;
        text.remove_prefix(std::min(text.find('\n'), text.size()));
    }
}

/// Returns whether a line is "key:", perhaps with something behind a blank.
bool IsYamlKey(std::string_view line)
{
    const auto end = std::find_if_not(line.begin(), line.end(), [](char c) {
        return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_';
    });
    const std::string_view rest(end, line.end());
    return end != line.begin() && !rest.empty() && rest.front() == ':' &&
           (rest.size() == 1 || kBlanks.find(rest[1]) != std::string_view::npos);
}

bool BeginsTmdl(std::string_view text)
{
    return std::any_of(kTmdlWords.begin(), kTmdlWords.end(), [text](std::string_view word) {
        return text.substr(0, word.size()) == word;
    });
}

/// Throws an InputError with the first line that holds bytes of another encoding.
void RequireUtf8(const SourceDocument& document)
{
    const std::string& text = *document.text;
    std::size_t offset = 0;
    while (offset < text.size()) {
        const Utf8Piece piece = ReadUtf8(std::string_view(text).substr(offset));
        if (!piece.isWellFormed) {
            const auto end = text.begin() + static_cast<std::ptrdiff_t>(offset);
            const auto line = 1 + std::count(text.begin(), end, '\n');
            throw InputError({{document.name + ':' + std::to_string(line),
                               "is a text in another encoding: holds bytes that are no UTF-8"}});
        }
        offset += piece.bytes;
    }
}

/// What is no YAML before its templates are rendered may be without them.
void ReadYaml(SourceDocument& document)
{
    try {
        document.json = ParseYaml(*document.text, document.problems);
    } catch (const InputError&) {
        if (!HasTemplates(*document.text))
            throw;
        RemoveTemplates(document);
    }
}

} // namespace

std::optional<ESyntax> RecogniseSyntax(std::string_view start)
{
    const std::string_view text = SkipComments(SkipByteOrderMark(start));
    if (text.empty())
        return std::nullopt;
    if (text.starts_with("{{") || text.starts_with("{%") || text.starts_with("{#"))
        return ESyntax::Yaml;
    if (text.front() == '{' || text.front() == '[')
        return ESyntax::Json;
    if (text.substr(0, 3) == "---" || text.substr(0, 5) == "%YAML" ||
        IsYamlKey(text.substr(0, text.find('\n'))))
        return ESyntax::Yaml;
    if (BeginsTmdl(text))
        return ESyntax::Tmdl;
    return std::nullopt;
}

SourceDocument ReadDocument(std::string name, std::string text, ESyntax syntax)
{
    SourceDocument document{.name = std::move(name),
                            .syntax = syntax,
                            .text = std::make_shared<const std::string>(std::move(text))};
    document.problems = JsonProblems(document.name);
    if (syntax == ESyntax::Yaml || syntax == ESyntax::Tmdl)
        RequireUtf8(document);
    if (syntax == ESyntax::Json)
        document.json = ParseJson(*document.text, document.problems);
    if (syntax == ESyntax::Yaml)
        ReadYaml(document);
    if (syntax == ESyntax::Tmdl)
        document.json = ParseTmdl(*document.text, document.problems);
    return document;
}

void RemoveTemplates(SourceDocument& document)
{
    if (document.syntax != ESyntax::Yaml || !HasTemplates(*document.text))
        return;
    document.problems = JsonProblems(document.name);
    std::optional<TemplateFree> free = LeaveOutTemplates(*document.text);
    if (!free) {
        document.json = nullptr;
        document.templates = {document.name + ", the whole file"};
        return;
    }
    for (const std::size_t line : free->lines)
        document.templates.push_back(document.name + ':' + std::to_string(line));
    document.text = std::make_shared<const std::string>(std::move(free->text));
    document.json = ParseYaml(*document.text, document.problems);
}

void ShowLines(SourceDocument& document)
{
    document.problems.SetLineFinder([text = document.text, syntax = document.syntax](
                                        const std::set<std::string>& pointers) -> DocumentLines {
        if (syntax == ESyntax::JavaScript)
            return {};
        if (syntax == ESyntax::Tmdl)
            return FindTmdlLines(*text, pointers);
        return syntax == ESyntax::Json ? FindJsonLines(*text, pointers)
                                       : FindYamlLines(*text, pointers);
    });
}

} // namespace qe::tool
