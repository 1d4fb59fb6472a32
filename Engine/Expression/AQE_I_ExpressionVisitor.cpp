#include "AQE_I_ExpressionVisitor.h"

AQE_I_ExpressionVisitor::~AQE_I_ExpressionVisitor() = default;
