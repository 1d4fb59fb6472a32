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

bool IsBlank(char letter)
{
    return kBlanks.find(letter) != std::string_view::npos;
}

/// Returns what stands behind a word without quotes as keys of YAML are; all of it where there is
/// none.
std::string_view SkipWord(std::string_view text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), [](char c) {
        return ascii::IsLetter(c) || ascii::IsDigit(c) || static_cast<unsigned char>(c) >= 0x80 ||
               c == '_' || c == '-' || c == '.';
    });
    return {end, text.end()};
}

/// Returns whether a text begins with "key:" or "'key':", perhaps with something behind a blank.
bool BeginsWithKey(std::string_view text)
{
    std::string_view rest = SkipWord(text);
    if (text.front() == '"' || text.front() == '\'') {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::size_t end = line.find(text.front(), 1);
        if (end == std::string_view::npos)
            return false;
        rest = text.substr(end + 1);
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    }
    return rest.size() != text.size() && rest.starts_with(':') &&
           (rest.size() == 1 || IsBlank(rest[1]));
}

/// Returns whether what stands in braces or brackets is YAML without quotes: "{name: x}", "[a, b]".
bool BeginsFlow(std::string_view text)
{
    const char open = text.front();
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks, 1), text.size()));
    if (text.empty())
        return false;
    if (open == '{')
        return text.front() != '"' && BeginsWithKey(text);
    std::string_view rest = SkipWord(text);
    const std::string_view word = text.substr(0, text.size() - rest.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    const bool isJson = word.empty() || ascii::IsDigit(word.front()) || word.front() == '-' ||
                        word == "true" || word == "false" || word == "null";
    return !isJson && (rest.starts_with(',') || rest.starts_with(']') || rest.starts_with(':'));
}

/// Returns whether a text begins with what only YAML has: a key, "- ", "---", "%YAML". Lines of
/// more dashes are comments of SQL.
bool BeginsYaml(std::string_view text)
{
    constexpr std::string_view kDocument = "---";
    for (const std::string_view sign : {std::string_view("-"), kDocument, std::string_view("?")})
        if (text.starts_with(sign) && (text.size() == sign.size() || IsBlank(text[sign.size()])))
            return true;
    return text.starts_with("%YAML") || BeginsWithKey(text);
}

/// Returns whether a whole text is a value of JSON without quotes or brackets.
bool IsJsonValue(std::string_view text)
{
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    const bool isNumber = ascii::IsDigit(text.front()) ||
                          (text.front() == '-' && text.size() > 1 && ascii::IsDigit(text[1]));
    return text == "null" || text == "true" || text == "false" ||
           (isNumber && text.find_first_not_of("0123456789+-.eE") == std::string_view::npos);
}

bool BeginsTmdl(std::string_view text)
{
    return std::any_of(kTmdlWords.begin(), kTmdlWords.end(), [text](std::string_view word) {
        return text.substr(0, word.size()) == word;
    });
}

/// Throws an InputError with the first line that holds what no model can hold. The parser of JSON
/// tells of both by itself.
void RequirePlainText(const SourceDocument& document)
{
    const std::string_view text = *document.text;
    const auto reject = [&](std::size_t offset, const char* why) {
        const std::size_t line = PositionCounter(text).MoveTo(offset).line;
        throw InputError({{document.name + ':' + std::to_string(line), why}});
    };
    std::size_t offset = 0;
    while (offset < text.size()) {
        const Utf8Piece piece = ReadUtf8(text.substr(offset));
        if (!piece.isWellFormed)
            reject(offset, "is a text in another encoding: holds bytes that are no UTF-8");
        if (text[offset] == '\0')
            reject(offset, "must not hold the character U+0000");
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

/// Returns the length of the comment that a text begins with; 0 where it begins with none, or with
/// one that does not end. Some comments of MySQL are statements.
std::size_t MeasureComment(std::string_view text)
{
    if (text.starts_with('#') || text.starts_with("--"))
        return std::min(text.find('\n'), text.size());
    if (!text.starts_with("/*") || text.starts_with("/*!"))
        return 0;
    const std::size_t end = text.find("*/", 2);
    return end == std::string_view::npos ? 0 : end + 2;
}

} // namespace

bool HoldsOnlyComments(std::string_view text)
{
    text = SkipByteOrderMark(text);
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        if (text.empty())
            return true;
        const std::size_t comment = MeasureComment(text);
        if (comment == 0)
            return false;
        text.remove_prefix(comment);
    }
}

std::string_view TitleOf(ESyntax syntax)
{
    switch (syntax) {
    case ESyntax::Json:
        return "JSON";
    case ESyntax::Yaml:
        return "YAML";
    case ESyntax::Tmdl:
        return "TMDL";
    default:
        return "JavaScript";
    }
}

std::optional<ESyntax> RecogniseSyntax(std::string_view start)
{
    const std::string_view text = SkipComments(SkipByteOrderMark(start));
    if (text.empty())
        return std::nullopt;
    if (text.starts_with("{{") || text.starts_with("{%") || text.starts_with("{#"))
        return ESyntax::Yaml;
    if (text.front() == '{' || text.front() == '[')
        return BeginsFlow(text) ? ESyntax::Yaml : ESyntax::Json;
    if (BeginsYaml(text))
        return ESyntax::Yaml;
    // No SQL begins with a text or a value alone.
    if (text.front() == '"' || IsJsonValue(text))
        return ESyntax::Json;
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
        RequirePlainText(document);
    if (syntax == ESyntax::Json)
        document.json = ParseJson(*document.text, document.problems);
    if (syntax == ESyntax::Yaml)
        ReadYaml(document);
    if (syntax == ESyntax::Tmdl)
        document.json = ParseTmdl(*document.text, document.problems, document.unknownObjects);
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
