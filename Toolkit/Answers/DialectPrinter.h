#ifndef TOOLKIT_ANSWERS_DIALECTPRINTER_H
#define TOOLKIT_ANSWERS_DIALECTPRINTER_H

#include "Engine/Expression/Printer.h"
#include "Toolkit/Sql/SqlDialect.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qe::tool {

/// Writes conditions in a dialect of SQL: its texts, concatenations and comparisons of nulls, and
/// truth values where it has none. What goes on in functions and casts is translated where the
/// condition comes from elsewhere; what no table of the dialect knows stays as it is.
class DialectPrinter : public expression::Printer
{
public:
    /// Where a condition comes from.
    enum class ESource : std::uint8_t
    {
        SameDialect,
        Elsewhere,
    };

    /// Appends to `out`; it and the dialect must outlive the printer.
    DialectPrinter(const SqlDialect& dialect, ESource source, std::string& out)
        : Printer(out), mForms(dialect.conditions), mSource(source)
    {}

    /// Writes a whole condition. Throws std::length_error where the dialect would need too long a
    /// text for it.
    void PrintCondition(const AQE_ExpressionNode& condition);

protected:
    void PrintNode(const expression::Node& node) final;

private:
    /// What a part of a condition stands for.
    enum class ERole : std::uint8_t
    {
        Condition,
        Value,
    };

    class RoleOfOperands;

    /// Writes a condition where a value is needed, or the other way round.
    void PrintConverted(const expression::Node& node);
    void PrintConditionAsValue(const expression::Node& node);
    void PrintOwnForm(const expression::Node& node);
    void PrintWithOperands(const expression::Node& node);
    void PrintCase(const expression::Node& choice);
    void PrintWhen(const expression::Node& branch);
    void PrintCast(const expression::Node& cast);
    void PrintString(std::string_view text);
    void PrintConcatenation(const expression::Node& node);
    void PrintAsText(const expression::Node& operand);
    void PrintDistinct(const expression::Node& node);
    /// Writes a name or call; returns false where the dialect has no form of its own for it.
    [[nodiscard]] bool PrintCall(const expression::Node& node);
    void PrintForm(std::string_view form, const expression::Node& node);
    [[nodiscard]] ERole RoleBelow(const expression::Node& node) const;

    const ConditionForms& mForms;
    ESource mSource;
    ERole mRole = ERole::Condition;
    /// That of what stands between WHEN and THEN.
    ERole mWhenRole = ERole::Condition;
    int mDoubled = 0;
};

} // namespace qe::tool

#endif
