#include "Engine/Expression/Parser.h"

#include "Engine/Expression/Lexer.h"
#include "Engine/Expression/Operators.h"
#include "Engine/Services/Characters.h"

#include <exception>
#include <utility>

namespace qe::expression {

namespace {

class SyntaxFailure : public std::exception
{
public:
    explicit SyntaxFailure(ParseFailure failure) : mFailure(std::move(failure)) {}

    [[nodiscard]] const char* what() const noexcept override { return mFailure.expected.c_str(); }
    [[nodiscard]] const ParseFailure& Get() const noexcept { return mFailure; }

private:
    ParseFailure mFailure;
};

using NodePointer = std::unique_ptr<Node>;

constexpr EPrecedence kPredicateOperands = TighterThan(EPrecedence::Predicate);

class Parser
{
public:
    explicit Parser(std::string_view text) : mLexer(text), mCurrent(mLexer.Next()) {}

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
    [[nodiscard]] bool Is(ETokenKind kind) const { return mCurrent.kind == kind; }
    [[nodiscard]] bool IsWord(std::string_view word) const
    {
        return Is(ETokenKind::Word) && ascii::ToLower(std::string(mCurrent.text)) == word;
    }
    Token Advance() { return std::exchange(mCurrent, mLexer.Next()); }
    bool Accept(ETokenKind kind);
    void Expect(ETokenKind kind, const char* expected);
    [[noreturn]] void Fail(std::string expected) const;
    [[noreturn]] void FailAtOpenName() const;

    Lexer mLexer;
    Token mCurrent;
    std::vector<PlacedReference> mReferences;
    int mNesting = 0;
};

Parser::Nesting::Nesting(Parser& parser) : mParser(parser)
{
    if (parser.mNesting == kMaximumNesting)
        parser.Fail("no more than " + std::to_string(kMaximumNesting) + " levels of nesting");
    ++parser.mNesting;
}

NodePointer Parser::ParseAll()
{
    NodePointer root = ParseExpression(EPrecedence::Or);
    Expect(ETokenKind::End, "an operator or the end of the text");
    return root;
}

/// Parses operators that bind at least as tightly as `loosest`. After each the next one must
/// bind more loosely, since chains of one precedence are taken in one go and predicates do not
/// associate.
NodePointer Parser::ParseExpression(EPrecedence loosest)
{
    const bool negated = Is(ETokenKind::Not) && loosest <= EPrecedence::Not;
    NodePointer left = negated ? ParseNested(ENodeKind::Not, EPrecedence::Not) : ParseOperand();
    EPrecedence last = negated ? EPrecedence::Not : EPrecedence::Primary;
    for (;;) {
        const EPrecedence next = PrecedenceAfterOperand();
        if (next < loosest || next >= last)
            return left;
        const InfixRule* const rule = FindInfixRule(mCurrent.kind);
        left = rule == nullptr ? ParsePredicate(std::move(left))
                               : ParseInfix(std::move(left), rule->node);
        last = next;
    }
}

/// Returns Primary where no operator follows.
EPrecedence Parser::PrecedenceAfterOperand() const
{
    if (const InfixRule* const rule = FindInfixRule(mCurrent.kind))
        return PrecedenceOf(rule->node);
    switch (mCurrent.kind) {
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
    for (const InfixRule* rule = FindInfixRule(mCurrent.kind);
         rule != nullptr && rule->node == kind; rule = FindInfixRule(mCurrent.kind)) {
        Advance();
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
    bool negated = Accept(ETokenKind::Not);
    if (negated && !Is(ETokenKind::In) && !Is(ETokenKind::Like) && !Is(ETokenKind::Between))
        Fail("IN, LIKE or BETWEEN");
    const ETokenKind keyword = Advance().kind;
    if (keyword == ETokenKind::Is) {
        negated = Accept(ETokenKind::Not);
        if (IsWord("distinct"))
            return ParseDistinct(std::move(left), negated);
    }
    auto predicate = std::make_unique<Node>(PredicateOf(keyword));
    predicate->AddOperand(std::move(left));
    switch (predicate->GetKind()) {
    case ENodeKind::In:
        Expect(ETokenKind::LeftParenthesis, "'('");
        ParseList(*predicate);
        break;
    case ENodeKind::Like:
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        if (Accept(ETokenKind::Escape))
            predicate->AddOperand(ParseExpression(kPredicateOperands));
        break;
    case ENodeKind::Between:
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        Expect(ETokenKind::And, "an operator or AND");
        predicate->AddOperand(ParseExpression(kPredicateOperands));
        break;
    default:
        Expect(ETokenKind::Null,
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
    Advance();
    if (!IsWord("from"))
        Fail("FROM");
    Advance();
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
    Advance();
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
    } while (Accept(ETokenKind::Comma));
    Expect(ETokenKind::RightParenthesis, "an operator, ',' or ')'");
}

NodePointer Parser::ParseOperand()
{
    switch (mCurrent.kind) {
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
        return std::make_unique<Node>(ENodeKind::String, GetValue(Advance()));
    case ETokenKind::Number:
        return std::make_unique<Node>(ENodeKind::Number, std::string(Advance().text));
    case ETokenKind::Null:
        return std::make_unique<Node>(ENodeKind::Name, std::string(Advance().text));
    case ETokenKind::Word:
        return ParseNameOrCall();
    case ETokenKind::OpenName:
        FailAtOpenName();
    case ETokenKind::OpenString:
        Fail("a text that ends in a single quote");
    default:
        Fail("an operand");
    }
}

NodePointer Parser::ParseParenthesis()
{
    const Nesting nesting(*this);
    Advance();
    NodePointer inner = ParseExpression(EPrecedence::Or);
    Expect(ETokenKind::RightParenthesis, "an operator or ')'");
    return inner;
}

NodePointer Parser::ParseCase()
{
    const Nesting nesting(*this);
    Advance();
    auto choice = std::make_unique<Node>(ENodeKind::Case);
    if (!Is(ETokenKind::When))
        choice->AddOperand(ParseExpression(EPrecedence::Or));
    do {
        choice->AddOperand(ParseWhen());
    } while (Is(ETokenKind::When));
    if (Accept(ETokenKind::Else)) {
        choice->AddOperand(ParseExpression(EPrecedence::Or));
        Expect(ETokenKind::EndCase, "an operator or END");
    } else {
        Expect(ETokenKind::EndCase, "an operator, WHEN, ELSE or END");
    }
    return choice;
}

NodePointer Parser::ParseWhen()
{
    Expect(ETokenKind::When, "an operator or WHEN");
    auto branch = std::make_unique<Node>(ENodeKind::When);
    branch->AddOperand(ParseExpression(EPrecedence::Or));
    Expect(ETokenKind::Then, "an operator or THEN");
    branch->AddOperand(ParseExpression(EPrecedence::Or));
    return branch;
}

NodePointer Parser::ParseCast()
{
    const Nesting nesting(*this);
    Advance();
    Expect(ETokenKind::LeftParenthesis, "'('");
    NodePointer value = ParseExpression(EPrecedence::Or);
    Expect(ETokenKind::As, "an operator or AS");
    auto cast = std::make_unique<Node>(ENodeKind::Cast, ParseType());
    cast->AddOperand(std::move(value));
    Expect(ETokenKind::RightParenthesis, "'(', ')' or more of the type");
    return cast;
}

/// Reads words, behind each of which sizes may stand, as in "timestamp(3) with time zone". Returns
/// them with single spaces between.
std::string Parser::ParseType()
{
    if (!Is(ETokenKind::Word))
        Fail("a type");
    std::string type;
    while (Is(ETokenKind::Word)) {
        type += type.empty() ? "" : " ";
        type += Advance().text;
        if (!Accept(ETokenKind::LeftParenthesis))
            continue;
        char separator = '(';
        do {
            if (!Is(ETokenKind::Number) && !Is(ETokenKind::Word))
                Fail("a size");
            type += separator;
            type += Advance().text;
            separator = ',';
        } while (Accept(ETokenKind::Comma));
        Expect(ETokenKind::RightParenthesis, "',' or ')'");
        type += ')';
    }
    return type;
}

NodePointer Parser::ParseReference()
{
    const std::size_t offset = mCurrent.offset;
    std::vector<I18NString> names;
    do {
        if (Is(ETokenKind::OpenName))
            FailAtOpenName();
        if (!Is(ETokenKind::QuotedName) || mCurrent.text.size() == 2)
            Fail("a name between brackets or double quotes");
        names.emplace_back(GetValue(Advance()));
    } while (Accept(ETokenKind::Dot));
    auto reference = std::make_unique<ReferenceNode>(names);
    mReferences.push_back({reference.get(), std::move(names), offset});
    return reference;
}

NodePointer Parser::ParseNameOrCall()
{
    std::string name(Advance().text);
    while (Accept(ETokenKind::Dot)) {
        if (!Is(ETokenKind::Word) && KeywordOf(mCurrent.text) == ETokenKind::Word)
            Fail("a name");
        name += '.';
        name += Advance().text;
    }
    if (!Accept(ETokenKind::LeftParenthesis))
        return std::make_unique<Node>(ENodeKind::Name, std::move(name));
    auto call = std::make_unique<Node>(ENodeKind::Call, std::move(name));
    if (!Accept(ETokenKind::RightParenthesis))
        ParseList(*call);
    return call;
}

bool Parser::Accept(ETokenKind kind)
{
    const bool found = Is(kind);
    if (found)
        Advance();
    return found;
}

void Parser::Expect(ETokenKind kind, const char* expected)
{
    if (!Accept(kind))
        Fail(expected);
}

void Parser::FailAtOpenName() const
{
    Fail(mCurrent.text.front() == '[' ? "a name that ends in ']'"
                                      : "a name that ends in a double quote");
}

void Parser::Fail(std::string expected) const
{
    if (Is(ETokenKind::OpenComment))
        expected = "a comment that ends in '*/'";
    throw SyntaxFailure({mCurrent.offset, std::move(expected), Describe(mCurrent)});
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
