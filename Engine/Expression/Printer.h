#ifndef ENGINE_EXPRESSION_PRINTER_H
#define ENGINE_EXPRESSION_PRINTER_H

#include "Engine/Expression/Node.h"
#include "Engine/Expression/Operators.h"
#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qe::expression {

/// Writes trees as text that Parse reads back as the same tree, with parentheses only where the
/// tree would change without them. Keywords are written in capitals, "<>" for every unequal
/// sign, references in brackets without an empty qualifier; literals, types and other names as they
/// were read.
class QEENGINE_EXPORT Printer
{
public:
    /// Appends to `out`, which must outlive the printer.
    explicit Printer(std::string& out) : mOut(out) {}
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    virtual ~Printer();

    /// Writes any node. Of a node that is not of this library, a reference is written from its
    /// names and anything else as its children.
    void Print(const AQE_ExpressionNode& node);

protected:
    /// Writes a reference from its names, in brackets.
    virtual void PrintReference(const AQE_ExpressionNode& reference);
    /// Appends the text as it is.
    void PrintText(std::string_view text) { mOut += text; }

private:
    void PrintNode(const Node& node);
    void PrintOperand(const Node& operand, EPrecedence loosest);
    void PrintInfix(const Node& node);
    void PrintNegation(const Node& node);
    void PrintPredicate(const Node& node);
    void PrintCase(const Node& choice);
    void PrintWhen(const Node& branch);
    void PrintCast(const Node& cast);
    void PrintList(const Node& node, std::size_t first);
    void PrintQuoted(std::string_view value, char open, char close);

    std::string& mOut;
};

} // namespace qe::expression

#endif
