#ifndef PLATFORM_AQE_EXPRESSION_H
#define PLATFORM_AQE_EXPRESSION_H

#include "AQE_ExpressionNode.h"
#include "I18NLocale.h"
#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

class amdi_gateway;

/// A parsed expression; it is itself the root node of its tree and owns the nodes below it.
///
/// Expressions are join and filter conditions:
/// - references `[namespace].[subject].[item]` of one or more names, "]" doubled inside a name;
///   names may stand between double quotes as well, which are doubled inside;
/// - literals: numbers with a decimal point, texts between single quotes, which are doubled
///   inside; NULL and other names without brackets stand for themselves;
/// - calls `name(argument, ...)`, the name perhaps with dots, and CAST(... AS type);
/// - CASE [...] WHEN ... THEN ... [ELSE ...] END;
/// - unary -, then * and /, then + and -, then ||, then the predicates = <> != < <= > >=,
///   [NOT] IN (...), [NOT] LIKE ... [ESCAPE ...], [NOT] BETWEEN ... AND ..., IS [NOT] NULL and
///   IS [NOT] DISTINCT FROM, then NOT, AND and OR, which bind least; parentheses.
///
/// Comments, from -- to the end of the line or from /* to */, count as blanks. Keywords are known
/// in any case. Names and texts may hold any characters. Numbers, separators and keywords are the
/// same in every locale.
class QEENGINE_EXPORT AQE_Expression : public AQE_ExpressionNode
{
public:
    ~AQE_Expression() override;

    /// Returns the text without the markup tags around its references, as Create parses it. What
    /// stands between brackets or quotes or in comments is never touched.
    ///
    /// A "<" begins a tag when a tag follows that cannot be part of a condition: `</name>`,
    /// `<name/>` or `<name attribute="value">`. A tag `<name>` without attributes could be two
    /// comparisons; it is a tag where an operand must follow, or when `</name>` closes it
    /// later. No space separates "<" from the name, which begins with an ASCII letter or "_".
    /// Every other "<" is an operator, so `a<b and c>d`, `a <> b` and `a<=b` stay.
    ///
    /// `&lt;` and `&gt;` become the operators they stand for, which never begin a tag; other
    /// entities stay. Where leaving a tag out would make one token of two, a space takes its
    /// place. Takes any text; text that is no expression gives something that Create refuses or
    /// reads without its markup. The cost is linear but for a table of the tag names.
    [[nodiscard]] static I18NString GetUntaggedExpression(const I18NString& text);

    /// Parses `text`, which has no markup, and resolves its references of two and more names
    /// through the gateway, when that can look up names (qe::expression::ReferenceResolver).
    /// References that it does not know, and all references when the gateway is null or cannot
    /// look up names, have empty ids. The caller owns the result, which keeps nothing of the
    /// gateway.
    ///
    /// Text that is no expression, or nested deeper than 200 levels, raises an HBNException of
    /// severity 1 with message 0xA9E5E001, which holds the line and column and what was expected
    /// there. `context` names the caller in the message.
    [[nodiscard]] static AQE_Expression* Create(const I18NString& text, amdi_gateway* gateway,
                                                const I18NString& context,
                                                const I18NLocale& locale);
};

#endif
