#include "Engine/Expression/Lexer.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qe::expression {

namespace {

struct Spelling
{
    std::string_view text;
    ETokenKind kind;
};

constexpr std::array<Spelling, 16> kKeywords{{{"and", ETokenKind::And},
                                              {"or", ETokenKind::Or},
                                              {"not", ETokenKind::Not},
                                              {"in", ETokenKind::In},
                                              {"like", ETokenKind::Like},
                                              {"escape", ETokenKind::Escape},
                                              {"between", ETokenKind::Between},
                                              {"is", ETokenKind::Is},
                                              {"null", ETokenKind::Null},
                                              {"case", ETokenKind::Case},
                                              {"when", ETokenKind::When},
                                              {"then", ETokenKind::Then},
                                              {"else", ETokenKind::Else},
                                              {"end", ETokenKind::EndCase},
                                              {"cast", ETokenKind::Cast},
                                              {"as", ETokenKind::As}}};

/// A symbol stands before those that it begins with.
constexpr std::array<Spelling, 16> kSymbols{{{"<>", ETokenKind::NotEqual},
                                             {"!=", ETokenKind::NotEqual},
                                             {"<=", ETokenKind::LessOrEqual},
                                             {">=", ETokenKind::GreaterOrEqual},
                                             {"||", ETokenKind::Concatenate},
                                             {"<", ETokenKind::Less},
                                             {">", ETokenKind::Greater},
                                             {"=", ETokenKind::Equal},
                                             {"+", ETokenKind::Plus},
                                             {"-", ETokenKind::Minus},
                                             {"*", ETokenKind::Times},
                                             {"/", ETokenKind::Divide},
                                             {"(", ETokenKind::LeftParenthesis},
                                             {")", ETokenKind::RightParenthesis},
                                             {",", ETokenKind::Comma},
                                             {".", ETokenKind::Dot}}};

} // namespace

std::string GetValue(const Token& token)
{
    const char close = token.text.back();
    const std::string_view inner = token.text.substr(1, token.text.size() - 2);
    if (inner.find(close) == std::string_view::npos)
        return std::string(inner);
    std::string value;
    for (std::size_t i = 1; i + 1 < token.text.size(); ++i) {
        value += token.text[i];
        if (token.text[i] == close)
            ++i;
    }
    return value;
}

std::string Describe(const Token& token)
{
    constexpr std::size_t kLongest = 40;
    if (token.kind == ETokenKind::End)
        return "the end of the text";
    if (token.text.size() <= kLongest)
        return '"' + std::string(token.text) + '"';
    return '"' + std::string(CutUtf8(token.text, kLongest)) + "...\"";
}

ETokenKind KeywordOf(std::string_view word) noexcept
{
    const auto sameLetter = [](char left, char right) { return ascii::ToLower(left) == right; };
    for (const Spelling& keyword : kKeywords)
        if (std::equal(word.begin(), word.end(), keyword.text.begin(), keyword.text.end(),
                       sameLetter))
            return keyword.kind;
    return ETokenKind::Word;
}

std::size_t FindEndOfQuoted(std::string_view text, std::size_t offset, char close) noexcept
{
    std::size_t end = text.find(close, offset + 1);
    while (end != std::string_view::npos && end + 1 < text.size() && text[end + 1] == close)
        end = text.find(close, end + 2);
    return end == std::string_view::npos ? end : end + 1;
}

Token Lexer::Next()
{
    Token token = NextPiece();
    while (token.kind == ETokenKind::Comment)
        token = NextPiece();
    return token;
}

Token Lexer::NextPiece()
{
    while (mOffset < mText.size() && ascii::IsSpace(mText[mOffset]))
        ++mOffset;
    if (mOffset == mText.size())
        return Take(ETokenKind::End, 0);
    const char c = mText[mOffset];
    if (c == '[')
        return TakeQuoted(']', ETokenKind::QuotedName, ETokenKind::OpenName);
    if (c == '"')
        return TakeQuoted('"', ETokenKind::QuotedName, ETokenKind::OpenName);
    if (c == '\'')
        return TakeQuoted('\'', ETokenKind::String, ETokenKind::OpenString);
    if (IsWordStart(c))
        return TakeWord();
    if (ascii::IsDigit(c) || (c == '.' && IsDigitAt(mOffset + 1)))
        return TakeNumber();
    const std::string_view pair = mText.substr(mOffset, 2);
    if (pair == "--" || pair == "/*")
        return TakeComment();
    return TakeSymbol();
}

Token Lexer::Take(ETokenKind kind, std::size_t length)
{
    const std::size_t offset = std::exchange(mOffset, mOffset + length);
    return {kind, mText.substr(offset, length), offset};
}

Token Lexer::TakeQuoted(char close, ETokenKind closed, ETokenKind open)
{
    const std::size_t end = FindEndOfQuoted(mText, mOffset, close);
    if (end == std::string_view::npos)
        return Take(open, mText.size() - mOffset);
    return Take(closed, end - mOffset);
}

Token Lexer::TakeComment()
{
    const std::string_view rest = mText.substr(mOffset);
    if (rest.front() == '-')
        return Take(ETokenKind::Comment, std::min(rest.find('\n'), rest.size()));
    const std::size_t end = rest.find("*/", 2);
    if (end == std::string_view::npos)
        return Take(ETokenKind::OpenComment, rest.size());
    return Take(ETokenKind::Comment, end + 2);
}

Token Lexer::TakeWord()
{
    std::size_t end = mOffset + 1;
    while (end < mText.size() && IsWordPart(mText[end]))
        ++end;
    return Take(KeywordOf(mText.substr(mOffset, end - mOffset)), end - mOffset);
}

Token Lexer::TakeNumber()
{
    std::size_t end = SkipDigits(mOffset);
    if (end < mText.size() && mText[end] == '.')
        end = SkipDigits(end + 1);
    if (end < mText.size() && ascii::ToLower(mText[end]) == 'e') {
        std::size_t exponent = end + 1;
        if (exponent < mText.size() && (mText[exponent] == '+' || mText[exponent] == '-'))
            ++exponent;
        if (IsDigitAt(exponent))
            end = SkipDigits(exponent);
    }
    return Take(ETokenKind::Number, end - mOffset);
}

Token Lexer::TakeSymbol()
{
    const std::string_view rest = mText.substr(mOffset);
    for (const Spelling& symbol : kSymbols)
        if (symbol.text.front() == rest.front() && rest.starts_with(symbol.text))
            return Take(symbol.kind, symbol.text.size());
    return Take(ETokenKind::Unknown, 1);
}

std::size_t Lexer::SkipDigits(std::size_t offset) const
{
    while (IsDigitAt(offset))
        ++offset;
    return offset;
}

bool Lexer::IsDigitAt(std::size_t offset) const
{
    return offset < mText.size() && ascii::IsDigit(mText[offset]);
}

} // namespace qe::expression
