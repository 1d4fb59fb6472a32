#ifndef PLATFORM_AQE_EXPRESSIONVISITORSTRING_H
#define PLATFORM_AQE_EXPRESSIONVISITORSTRING_H

#include "AQE_I_ExpressionVisitor.h"
#include "I18NLocale.h"
#include "I18NString.h"

#include <string>

/// Writes an expression as text, with no more parentheses than it needs. Parsing the text gives
/// the same expression again.
class QEENGINE_EXPORT AQE_ExpressionVisitorString : public AQE_I_ExpressionVisitor
{
public:
    /// Numbers and separators are written the same in every locale.
    explicit AQE_ExpressionVisitorString(const I18NLocale& locale);
    ~AQE_ExpressionVisitorString() override;

    /// Writes the whole tree below `node` behind what has been written so far. References are
    /// written from their names, in which "]" is doubled; the tree is not changed.
    void Visit(const AQE_ExpressionNode& node) override;

    /// Replaces `text` by what has been written so far.
    void GetText(I18NString& text) const;

private:
    std::string mText;
};

#endif
