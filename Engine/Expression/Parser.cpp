#include "Engine/Expression/Parser.h"

#include "Engine/Expression/Operators.h"

#include <utility>

namespace qe::expression {

namespace {

using NodePointer = std::unique_ptr<Node>;

constexpr EPrecedence kPredicateOperands = TighterThan(EPrecedence::Predicate);

class Parser
{
public:
    explicit Parser(std::string_view text) : mTokens(text) {}

    NodePointer ParseAll();
    std::vector<PlacedReference> TakeReferences() { return std::move(mReferences); }

private:
    /// Counts one level of nesting for as long as it lives.
    class Nesting
    {
    public:
        explicit Nesting(Parser& parser);
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        ~Nesting() { --mParser.mNesting; }

    private:
        Parser& mParser;
    };

    NodePointer ParseExpression(EPrecedence loosest);
    NodePointer ParseInfix(NodePointer left, ENodeKind kind);
    NodePointer ParsePredicate(NodePointer left);
    NodePointer ParseDistinct(NodePointer left, bool negated);
    NodePointer ParseNested(ENodeKind kind, EPrecedence loosest);
    void ParseList(Node& parent);
    NodePointer ParseOperand();
    NodePointer ParseParenthesis();
    NodePointer ParseCase();
    NodePointer ParseWhen();
    NodePointer ParseCast();
    std::string ParseType();
    NodePointer ParseReference();
    NodePointer ParseNameOrCall();

    [[nodiscard]] EPrecedence PrecedenceAfterOperand() const;
    TokenCursor mTokens;
    std::vector<PlacedReference> mReferences;
    int mNesting = 0;
};

Parser::Nesting::Nesting(Parser& parser) : mParser(parser)
{
    if (parser.mNesting == kMaximumNesting)
        parser.mTokens.Fail("no more than " + std::to_string(kMaximumNesting) +
                            " levels of nesting");
    ++parser.mNesting;
}

NodePointer Parser::ParseAll()
{
    NodePointer root = ParseExpression(EPrecedence::Or);
    mTokens.Expect(ETokenKind::End, "an operator or the end of the text");
    return root;
}

/// Parses operators that bind at least as tightly as `loosest`. After each the next one must
/// bind more loosely, since chains of one precedence are taken in one go and predicates do not
/// associate.
NodePointer Parser::ParseExpression(EPrecedence loosest)
{
    const bool negated = mTokens.Is(ETokenKind::Not) && loosest <= EPrecedence::Not;
    NodePointer left = negated ? ParseNested(ENodeKind::Not, EPrecedence::Not) : ParseOperand();
    EPrecedence last = negated ? EPrecedence::Not : EPrecedence::Primary;
    for (;;) {
        const EPrecedence next = PrecedenceAfterOperand();
        if (next < loosest || next >= last)
            return left;
        const InfixRule* const rule = FindInfixRule(mTokens.Get().kind);
        left = rule == nullptr ? ParsePredicate(std::move(left))
                               : ParseInfix(std::move(left), rule->node);
        last = next;
    }
}

/// Returns Primary where no operator follows.
EPrecedence Parser::PrecedenceAfterOperand() const
{
    if (const InfixRule* const rule = FindInfixRule(mTokens.Get().kind))
        return PrecedenceOf(rule->node);
    switch (mTokens.Get().kind) {
    case ETokenKind::Not:
    case ETokenKind::In:
    case ETokenKind::Like:
    case ETokenKind::Between:
    case ETokenKind::Is:
        return EPrecedence::Predicate;
    default:
        return EPrecedence::Primary;
    }
}

NodePointer Parser::ParseInfix(NodePointer left, ENodeKind kind)
{
    NodePointer chain = std::move(left);
    if (chain->GetKind() != kind || kind == ENodeKind::Comparison) {
        auto parent = std::make_unique<Node>(kind);
        parent->AddOperand(std::move(chain));
        chain = std::move(parent);
    }
    const EPrecedence operands = TighterThan(PrecedenceOf(kind));
    for (const InfixRule* rule = FindInfixRule(mTokens.Get().kind);
         rule != nullptr && rule->node == kind; rule = FindInfixRule(mTokens.Get().kind)) {
        mTokens.Advance();
        chain->AddOperator(rule->op);
        NodePointer right = ParseExpression(operands);
        if (right->GetKind() == kind && IsAssociative(kind))
            chain->Absorb(*right);
        else
            chain->AddOperand(std::move(right));
        if (kind == ENodeKind::Comparison)
            break;
    }
    return chain;
}

NodePointer Parser::ParsePredicate(NodePointer left)
{
    bool negated = mTokens.Accept(ETokenKind::Not);
    if (negated && !mTokens.Is(ETokenKind::In) && !mTokens.Is(ETokenKind::Like) &&
        !mTokens.Is(ETokenKind::Between))
        mTokens.Fail("IN, LIKE or BETWEEN");
    const ETokenKind keyword = mTokens.Advance().kind;
    if (keyword == ETokenKind::Is) {
        negated = mTokens.Accept(ETokenKind::Not);
        if (mTokens.IsWord("distinct"))
            return ParseDistinct(std::move(left), negated);
    }
    auto predicate = std::make_unique<Node>(PredicateOf(keyword));
    predicate->AddOperand(std::move(left));
    switch (predicate->GetKind()) {
    case ENodeKind::In:
        mTokens.Expect(ETokenKind::LeftParenthesis, "'('");
        ParseList(*predicate);
        break;
    case ENodeKind::Like:
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        if (mTokens.Accept(ETokenKind::Escape))
            predicate->AddOperand(ParseExpression(kPredicateOperands));
        break;
    case ENodeKind::Between:
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        mTokens.Expect(ETokenKind::And, "an operator or AND");
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        break;
    default:
        mTokens.Expect(ETokenKind::Null,
                       negated ? "NULL or DISTINCT FROM" : "NULL, NOT NULL or DISTINCT FROM");
        break;
    }
    if (negated)
        predicate->AddOperator(EOperator::Not);
    return predicate;
}

/// Parses what follows IS or IS NOT. DISTINCT and FROM are names everywhere else.
NodePointer Parser::ParseDistinct(NodePointer left, bool negated)
{
    mTokens.Advance();
    if (!mTokens.IsWord("from"))
        mTokens.Fail("FROM");
    mTokens.Advance();
    auto predicate = std::make_unique<Node>(ENodeKind::Distinct);
    predicate->AddOperand(std::move(left));
    predicate->AddOperand(ParseExpression(kPredicateOperands));
    if (negated)
        predicate->AddOperator(EOperator::Not);
    return predicate;
}

NodePointer Parser::ParseNested(ENodeKind kind, EPrecedence loosest)
{
    const Nesting nesting(*this);
    mTokens.Advance();
    auto parent = std::make_unique<Node>(kind);
    parent->AddOperand(ParseExpression(loosest));
    return parent;
}

/// Parses what follows an opening parenthesis: one or more expressions.
void Parser::ParseList(Node& parent)
{
    const Nesting nesting(*this);
    do {
        parent.AddOperand(ParseExpression(EPrecedence::Or));
    } while (mTokens.Accept(ETokenKind::Comma));
    mTokens.Expect(ETokenKind::RightParenthesis, "an operator, ',' or ')'");
}

NodePointer Parser::ParseOperand()
{
    switch (mTokens.Get().kind) {
    case ETokenKind::Minus:
        return ParseNested(ENodeKind::Negation, EPrecedence::Negation);
    case ETokenKind::LeftParenthesis:
        return ParseParenthesis();
    case ETokenKind::Case:
        return ParseCase();
    case ETokenKind::Cast:
        return ParseCast();
    case ETokenKind::QuotedName:
        return ParseReference();
    case ETokenKind::String:
        return std::make_unique<Node>(ENodeKind::String, GetValue(mTokens.Advance()));
    case ETokenKind::Number:
        return std::make_unique<Node>(ENodeKind::Number, std::string(mTokens.Advance().text));
    case ETokenKind::Null:
        return std::make_unique<Node>(ENodeKind::Name, std::string(mTokens.Advance().text));
    case ETokenKind::Word:
        return ParseNameOrCall();
    case ETokenKind::OpenName:
        mTokens.FailAtOpenName();
    case ETokenKind::OpenString:
        mTokens.Fail("a text that ends in a single quote");
    default:
        mTokens.Fail("an operand");
    }
}

NodePointer Parser::ParseParenthesis()
{
    const Nesting nesting(*this);
    mTokens.Advance();
    NodePointer inner = ParseExpression(EPrecedence::Or);
    mTokens.Expect(ETokenKind::RightParenthesis, "an operator or ')'");
    return inner;
}

NodePointer Parser::ParseCase()
{
    const Nesting nesting(*this);
    mTokens.Advance();
    auto choice = std::make_unique<Node>(ENodeKind::Case);
    if (!mTokens.Is(ETokenKind::When))
        choice->AddOperand(ParseExpression(EPrecedence::Or));
    do {
        choice->AddOperand(ParseWhen());
    } while (mTokens.Is(ETokenKind::When));
    if (mTokens.Accept(ETokenKind::Else)) {
        choice->AddOperand(ParseExpression(EPrecedence::Or));
        mTokens.Expect(ETokenKind::EndCase, "an operator or END");
    } else {
        mTokens.Expect(ETokenKind::EndCase, "an operator, WHEN, ELSE or END");
    }
    return choice;
}

NodePointer Parser::ParseWhen()
{
    mTokens.Expect(ETokenKind::When, "an operator or WHEN");
    auto branch = std::make_unique<Node>(ENodeKind::When);
    branch->AddOperand(ParseExpression(EPrecedence::Or));
    mTokens.Expect(ETokenKind::Then, "an operator or THEN");
    branch->AddOperand(ParseExpression(EPrecedence::Or));
    return branch;
}

NodePointer Parser::ParseCast()
{
    const Nesting nesting(*this);
    mTokens.Advance();
    mTokens.Expect(ETokenKind::LeftParenthesis, "'('");
    NodePointer value = ParseExpression(EPrecedence::Or);
    mTokens.Expect(ETokenKind::As, "an operator or AS");
    auto cast = std::make_unique<Node>(ENodeKind::Cast, ParseType());
    cast->AddOperand(std::move(value));
    mTokens.Expect(ETokenKind::RightParenthesis, "'(', ')' or more of the type");
    return cast;
}

/// Reads words, behind each of which sizes may stand, as in "timestamp(3) with time zone". Returns
/// them with single spaces between.
std::string Parser::ParseType()
{
    if (!mTokens.Is(ETokenKind::Word))
        mTokens.Fail("a type");
    std::string type;
    while (mTokens.Is(ETokenKind::Word)) {
        type += type.empty() ? "" : " ";
        type += mTokens.Advance().text;
        if (!mTokens.Accept(ETokenKind::LeftParenthesis))
            continue;
        char separator = '(';
        do {
            if (!mTokens.Is(ETokenKind::Number) && !mTokens.Is(ETokenKind::Word))
                mTokens.Fail("a size");
            type += separator;
            type += mTokens.Advance().text;
            separator = ',';
        } while (mTokens.Accept(ETokenKind::Comma));
        mTokens.Expect(ETokenKind::RightParenthesis, "',' or ')'");
        type += ')';
    }
    return type;
}

NodePointer Parser::ParseReference()
{
    const std::size_t offset = mTokens.Get().offset;
    std::vector<I18NString> names;
    do {
        if (mTokens.Is(ETokenKind::OpenName))
            mTokens.FailAtOpenName();
        if (!mTokens.Is(ETokenKind::QuotedName) || mTokens.Get().text.size() == 2)
            mTokens.Fail("a name between brackets or double quotes");
        names.emplace_back(GetValue(mTokens.Advance()));
    } while (mTokens.Accept(ETokenKind::Dot));
    auto reference = std::make_unique<ReferenceNode>(names);
    mReferences.push_back({reference.get(), std::move(names), offset});
    return reference;
}

NodePointer Parser::ParseNameOrCall()
{
    std::string name(mTokens.Advance().text);
    while (mTokens.Accept(ETokenKind::Dot)) {
        if (!mTokens.Is(ETokenKind::Word) && KeywordOf(mTokens.Get().text) == ETokenKind::Word)
            mTokens.Fail("a name");
        name += '.';
        name += mTokens.Advance().text;
    }
    if (!mTokens.Accept(ETokenKind::LeftParenthesis))
        return std::make_unique<Node>(ENodeKind::Name, std::move(name));
    auto call = std::make_unique<Node>(ENodeKind::Call, std::move(name));
    if (!mTokens.Accept(ETokenKind::RightParenthesis))
        ParseList(*call);
    return call;
}

} // namespace

ParseResult Parse(std::string_view text)
{
    Parser parser(text);
    ParseResult result;
    try {
        result.root = parser.ParseAll();
        result.references = parser.TakeReferences();
    } catch (const SyntaxFailure& failure) {
        result.references = parser.TakeReferences();
        for (PlacedReference& reference : result.references)
            reference.node = nullptr;
        result.failure = failure.Get();
    }
    return result;
}

} // namespace qe::expression
