#ifndef ENGINE_EXPRESSION_PARSER_H
#define ENGINE_EXPRESSION_PARSER_H

#include "Engine/Expression/Node.h"
#include "Engine/Expression/TokenCursor.h"
#include "I18NString.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::expression {

/// Parentheses, lists of arguments, CASE, NOT and unary minus may be nested this deep, all
/// together.
inline constexpr int kMaximumNesting = 200;

/// A reference that stands in a parsed text.
struct PlacedReference
{
    /// Belongs to the tree; null when the text is no expression.
    ReferenceNode* node = nullptr;
    std::vector<I18NString> names;
    std::size_t offset = 0;
};

struct ParseResult
{
    /// Null when the text is no expression.
    std::unique_ptr<Node> root;
    /// The references in reading order; on failure those before the failure.
    std::vector<PlacedReference> references;
    std::optional<ParseFailure> failure;
};

/// Parses untagged text by operator precedence. From the loosest to the tightest:
///
///     OR | AND | NOT | one of = <> != < <= > >= IN LIKE BETWEEN IS | "||" | + - | * / | unary -
///
/// The predicates on the fourth place do not associate: (a = b) = c needs its parentheses. The
/// others group from the left. OR, AND and || are associative, so that grouping a chain of
/// them makes no difference; neither does grouping a chain of + - or * / from the left. Such
/// groups become one node with all operands.
///
/// An operand is a reference, a literal, NULL or another name without brackets, a call, CASE,
/// CAST or an expression in parentheses. Names between double quotes are the same as those
/// between brackets; comments are passed over. Time is linear in the text times its nesting.
[[nodiscard]] ParseResult Parse(std::string_view text);

} // namespace qe::expression

#endif
