#include "AQE_ExpressionVisitorString.h"

#include "Engine/Expression/Printer.h"

AQE_ExpressionVisitorString::AQE_ExpressionVisitorString(const I18NLocale&)
{}

AQE_ExpressionVisitorString::~AQE_ExpressionVisitorString() = default;

void AQE_ExpressionVisitorString::Visit(const AQE_ExpressionNode& node)
{
    qe::expression::Printer(mText).Print(node);
}

void AQE_ExpressionVisitorString::GetText(I18NString& text) const
{
    text = mText;
}
