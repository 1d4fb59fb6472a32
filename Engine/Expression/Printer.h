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
    /// Writes a node and what is below it. Every node of this library passes here.
    virtual void PrintNode(const Node& node);
    /// Writes an operand, in parentheses where it binds more loosely.
    void PrintOperand(const Node& operand, EPrecedence loosest);
    /// Writes the operands from one on, between parentheses and with commas.
    void PrintList(const Node& node, std::size_t first);
    /// Appends the text as it is.
    void PrintText(std::string_view text) { mOut += text; }

private:
    void PrintInfix(const Node& node);
    void PrintNegation(const Node& node);
    void PrintPredicate(const Node& node);
    void PrintCase(const Node& choice);
    void PrintWhen(const Node& branch);
    void PrintCast(const Node& cast);
    void PrintQuoted(std::string_view value, char open, char close);

    std::string& mOut;
};

} // namespace qe::expression

#endif
