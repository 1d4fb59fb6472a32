#include "Engine/Expression/TokenCursor.h"

#include "Engine/Services/Characters.h"

namespace qe::expression {

bool TokenCursor::IsWord(std::string_view word) const
{
    return Is(ETokenKind::Word) && ascii::ToLower(std::string(mCurrent.text)) == word;
}

bool TokenCursor::Accept(ETokenKind kind)
{
    const bool found = Is(kind);
    if (found)
        Advance();
    return found;
}

void TokenCursor::Expect(ETokenKind kind, const char* expected)
{
    if (!Accept(kind))
        Fail(expected);
}

void TokenCursor::FailAtOpenName() const
{
    Fail(mCurrent.text.front() == '[' ? "a name that ends in ']'"
                                      : "a name that ends in a double quote");
}

void TokenCursor::Fail(std::string expected) const
{
    if (Is(ETokenKind::OpenComment))
        expected = "a comment that ends in '*/'";
    throw SyntaxFailure({mCurrent.offset, std::move(expected), Describe(mCurrent)});
}

} // namespace qe::expression
