#ifndef ENGINE_EXPRESSION_TOKENCURSOR_H
#define ENGINE_EXPRESSION_TOKENCURSOR_H

#include "Engine/Expression/Lexer.h"

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace qe::expression {

/// Where and why parsing stopped.
struct ParseFailure
{
    std::size_t offset = 0;
    std::string expected;
    std::string found;
};

/// Ends the parsing of a text that is no expression.
class SyntaxFailure : public std::exception
{
public:
    explicit SyntaxFailure(ParseFailure failure) : mFailure(std::move(failure)) {}

    [[nodiscard]] const char* what() const noexcept override { return mFailure.expected.c_str(); }
    [[nodiscard]] const ParseFailure& Get() const noexcept { return mFailure; }

private:
    ParseFailure mFailure;
};

/// Goes through the tokens of a text, one ahead of what has been taken. Refers to the text.
class TokenCursor
{
public:
    explicit TokenCursor(std::string_view text) : mLexer(text), mCurrent(mLexer.Next()) {}

    /// Returns the next token, which is not taken yet.
    [[nodiscard]] const Token& Get() const { return mCurrent; }
    [[nodiscard]] bool Is(ETokenKind kind) const { return mCurrent.kind == kind; }
    /// Returns whether the next token is that word, given in lower case.
    [[nodiscard]] bool IsWord(std::string_view word) const;

    /// Takes the next token and returns it.
    Token Advance() { return std::exchange(mCurrent, mLexer.Next()); }
    /// Takes the next token if it is of the kind; returns whether it was.
    bool Accept(ETokenKind kind);
    /// Takes the next token, which has to be of the kind. Throws a SyntaxFailure when it is not.
    void Expect(ETokenKind kind, const char* expected);

    /// Throws a SyntaxFailure about the next token.
    [[noreturn]] void Fail(std::string expected) const;
    /// The same for a name whose end is missing.
    [[noreturn]] void FailAtOpenName() const;

private:
    Lexer mLexer;
    Token mCurrent;
};

} // namespace qe::expression

#endif
