#ifndef PLATFORM_AQE_EXPRESSIONVISITORSTRING_H
#define PLATFORM_AQE_EXPRESSIONVISITORSTRING_H

#include "AQE_I_ExpressionVisitor.h"
#include "I18NLocale.h"
#include "I18NString.h"

/// Writes an expression as text, with no more parentheses than it needs.
class QEENGINE_EXPORT AQE_ExpressionVisitorString : public AQE_I_ExpressionVisitor
{
public:
    explicit AQE_ExpressionVisitorString(const I18NLocale& locale);
    ~AQE_ExpressionVisitorString() override;

    void Visit(const AQE_ExpressionNode& node) override;

    /// Replaces `text` by what has been written so far.
    void GetText(I18NString& text) const;

private:
    I18NLocale mLocale;
    I18NString mText;
};

#endif
