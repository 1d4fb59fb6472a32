#ifndef TOOLKIT_IMPORT_FORMATS_SOURCEDOCUMENT_H
#define TOOLKIT_IMPORT_FORMATS_SOURCEDOCUMENT_H

#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonProblems.h"

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What the texts are written in that hold models.
enum class ESyntax : std::uint8_t
{
    Json,
    Yaml,
    /// Objects as indented lines: "table Sales", "relationship 1" and so on.
    Tmdl,
    /// A program that would make objects, of which only its own text is known.
    JavaScript,
};

/// A text that may hold a model, and where its mistakes are told.
struct SourceDocument
{
    /// What messages call it.
    std::string name{};
    ESyntax syntax = ESyntax::Json;
    /// Never null.
    std::shared_ptr<const std::string> text{};
    /// Null for a program.
    nlohmann::json json{};
    JsonProblems problems{};
    /// The lines of templates that had to be left out of the text, as messages name them.
    std::vector<std::string> templates{};
    /// The words of objects of TMDL that nobody knows, with their places.
    std::vector<std::string> unknownObjects{};

    /// Returns the whole document as a value with a place.
    [[nodiscard]] PlacedJson Top() const { return {.value = &json, .pointer = ""}; }
};

/// Returns what a text that starts so is written in; nothing when it is none of these.
[[nodiscard]] std::optional<ESyntax> RecogniseSyntax(std::string_view start);

/// Returns whether a text is nothing but blanks and comments of YAML or SQL.
[[nodiscard]] bool HoldsOnlyComments(std::string_view text);

/// Returns what people call the syntax.
[[nodiscard]] std::string_view TitleOf(ESyntax syntax);

/// Reads a text. Throws an InputError with its place when it does not follow its syntax, is not
/// in UTF-8 or holds U+0000.
/// Where YAML does not for its templates, they are left out; it is null where little would remain.
[[nodiscard]] SourceDocument ReadDocument(std::string name, std::string text, ESyntax syntax);

/// Leaves the templates out of a YAML document, also those in texts between quotes.
void RemoveTemplates(SourceDocument& document);

/// Lets messages about the document show lines beside pointers.
void ShowLines(SourceDocument& document);

} // namespace qe::tool

#endif
