#include "AQE_ExpressionVisitorString.h"

#include "AQE_I_ExpressionVisitor.h"
#include "Engine/Expression/Printer.h"

// Defined here, so that all modules share one virtual table and one type description.
AQE_I_ExpressionVisitor::~AQE_I_ExpressionVisitor() = default;

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
