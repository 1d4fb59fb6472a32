#ifndef PLATFORM_AQE_EXPRESSION_H
#define PLATFORM_AQE_EXPRESSION_H

#include "AQE_ExpressionNode.h"
#include "I18NLocale.h"
#include "I18NString.h"
#include "QEENGINE_EXPORT.h"

class amdi_gateway;

/// A parsed expression; it is itself the root node of its tree.
class QEENGINE_EXPORT AQE_Expression : public AQE_ExpressionNode
{
public:
    ~AQE_Expression() override;

    /// Gives the text without the markup tags around its references, as Create parses it.
    [[nodiscard]] static I18NString GetUntaggedExpression(const I18NString& text);

    /// Parses `text` and resolves its references through the gateway. `context` names the caller
    /// in error messages. The caller owns the result. Text that is no expression raises an
    /// HBNException that tells the position and what was expected there.
    [[nodiscard]] static AQE_Expression* Create(const I18NString& text, amdi_gateway* gateway,
                                                const I18NString& context,
                                                const I18NLocale& locale);
};

#endif
