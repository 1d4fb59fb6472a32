#ifndef ENGINE_EXPRESSION_PARSEREPORT_H
#define ENGINE_EXPRESSION_PARSEREPORT_H

#include "Engine/Services/Characters.h"
#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

#include <optional>
#include <string>
#include <vector>

namespace qe::expression {

/// A reference as it stands in a text.
struct NamedReference
{
    /// The names without brackets.
    std::vector<I18NString> names;
    /// Where the reference begins.
    TextPosition position;
};

/// Why a text is no expression: the first place where it cannot go on.
struct SyntaxError
{
    TextPosition position;
    /// What could have stood there, in English: "an operand", "')'".
    std::string expected;
    /// What stands there: the text itself between quotes, shortened, or "the end of the text".
    std::string found;
};

/// What a text says, before any name is looked up.
struct ParseReport
{
    /// The references in reading order; when there is an error, those before it.
    std::vector<NamedReference> references;
    /// Why the text is no expression; nothing when it is one.
    std::optional<SyntaxError> error;
};

/// Reads a condition as it is stored, with or without markup, so that a loader can check it and
/// the names in it. Positions are those in `text` itself, markup included. Throws no exception
/// for text that is no expression; takes linear time.
[[nodiscard]] QEENGINE_EXPORT ParseReport FindReferences(const I18NString& text);

} // namespace qe::expression

#endif
