#include "AQE_Expression.h"

#include "AUT_LogException.h"
#include "Engine/Expression/MarkupRemover.h"
#include "Engine/Expression/Node.h"
#include "Engine/Expression/Parser.h"
#include "Engine/Services/Characters.h"
#include "Engine/Services/MessageCatalogue.h"
#include "HBNException.h"
#include "IdClass.h"
#include "amdi_gateway.h"

#include <string>
#include <utility>

namespace {

using namespace qe::expression;
using qe::PositionCounter;
using qe::TextPosition;

constexpr char kSourcePath[] = "Engine/Expression/AQE_Expression";
constexpr int kSeverity = 1;
constexpr int kSyntaxErrorCode = 1;

void ThrowSyntaxError(const I18NString& text, const ParseFailure& failure,
                      const I18NString& context)
{
    const TextPosition position = PositionCounter(text.View()).MoveTo(failure.offset);
    const std::string place =
        "line " + std::to_string(position.line) + ", column " + std::to_string(position.column);
    HBNException exception(kSeverity, kSyntaxErrorCode);
    HBNAddMessages(exception, qe::kSyntaxErrorMessage, 4, place, failure.expected, failure.found,
                   context, "", "");
    const int line = __LINE__ + 1;
    AUT_LogException(exception, kSourcePath, line);
    ORV_THROW(exception, kSourcePath, line, "QE");
}

void ResolveReferences(const std::vector<PlacedReference>& references, amdi_gateway* gateway)
{
    auto* const resolver = dynamic_cast<ReferenceResolver*>(gateway);
    if (resolver == nullptr)
        return;
    for (const PlacedReference& reference : references) {
        if (reference.names.size() < 2)
            continue;
        const auto target = resolver->ResolveReference(reference.names);
        if (!target)
            continue;
        reference.node->SetTarget(*target);
        if (reference.names.size() == 2 && target->referencedId.classCode == IdClassQueryItem)
            reference.node->SetNamePath({{}, reference.names[0], reference.names[1]});
    }
}

} // namespace

// Defined here, so that all modules share one virtual table and one type description.
qe::expression::ReferenceResolver::~ReferenceResolver() = default;

AQE_Expression::~AQE_Expression() = default;

I18NString AQE_Expression::GetUntaggedExpression(const I18NString& text)
{
    return MarkupRemover(text.View()).Run().GetText();
}

AQE_Expression* AQE_Expression::Create(const I18NString& text, amdi_gateway* gateway,
                                       const I18NString& context, const I18NLocale&)
{
    ParseResult result = Parse(text.View());
    if (result.failure)
        ThrowSyntaxError(text, *result.failure, context);
    ResolveReferences(result.references, gateway);
    return new ParsedExpression(std::move(result.root));
}
