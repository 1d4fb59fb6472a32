#ifndef TESTS_ENGINE_EXPRESSION_EXPRESSIONINVARIANTS_H
#define TESTS_ENGINE_EXPRESSION_EXPRESSIONINVARIANTS_H

#include "AQE_Expression.h"

#include <memory>
#include <string>
#include <vector>

/// Returns the tree of untagged text, parsed with no gateway.
std::unique_ptr<AQE_Expression> ParseText(const std::string& text);

/// Returns an expression as written by AQE_ExpressionVisitorString.
std::string PrintTree(const AQE_ExpressionNode& node);

/// Returns structure, operators, values and names: two trees are the same if and only if this is.
std::string DescribeTree(const AQE_ExpressionNode& node);

/// Returns the reference nodes in reading order.
std::vector<AQE_ExpressionNode*> CollectReferences(AQE_ExpressionNode& node);

/// Takes any bytes through untagging, checking, parsing and printing. Returns what does not hold
/// that should hold for every text; empty when all is well.
std::string FindBrokenInvariant(const std::string& text);

#endif
