#include "Engine/Expression/Tag.h"

#include "Engine/Services/AsciiText.h"

namespace qe::expression {

namespace {

/// Reads the parts of one tag from front to back. Each operation steps over what it finds.
class TagReader
{
public:
    TagReader(std::string_view text, std::size_t offset) : mText(text), mOffset(offset) {}

    [[nodiscard]] std::size_t GetOffset() const { return mOffset; }

    bool Skip(char wanted)
    {
        const bool found = Current() == wanted;
        mOffset += found ? 1 : 0;
        return found;
    }

    bool SkipSpaces()
    {
        const std::size_t begin = mOffset;
        while (ascii::IsSpace(Current()))
            ++mOffset;
        return mOffset > begin;
    }

    [[nodiscard]] bool IsAtName() const { return ascii::IsLetter(Current()) || Current() == '_'; }

    std::string_view ReadName()
    {
        const std::size_t begin = mOffset;
        if (IsAtName())
            while (IsNamePart(Current()))
                ++mOffset;
        return mText.substr(begin, mOffset - begin);
    }

    bool SkipAttribute()
    {
        ReadName();
        SkipSpaces();
        if (!Skip('='))
            return false;
        SkipSpaces();
        const char quote = Current();
        if (quote != '"' && quote != '\'')
            return false;
        const char stops[] = {quote, '<'};
        mOffset = mText.find_first_of({stops, 2}, mOffset + 1);
        if (mOffset == std::string_view::npos)
            mOffset = mText.size();
        return Skip(quote);
    }

private:
    static bool IsNamePart(char c)
    {
        return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_' || c == '-' || c == ':' ||
               c == '.';
    }

    [[nodiscard]] char Current() const { return mOffset < mText.size() ? mText[mOffset] : '\0'; }

    std::string_view mText;
    std::size_t mOffset;
};

} // namespace

Tag ReadTag(std::string_view text, std::size_t offset)
{
    TagReader reader(text, offset);
    if (!reader.Skip('<'))
        return {};
    Tag tag{reader.Skip('/') ? ETagShape::Closing : ETagShape::Bare, reader.ReadName(), 0};
    if (tag.name.empty())
        return {};
    for (bool separated = reader.SkipSpaces(); separated && reader.IsAtName();
         separated = reader.SkipSpaces()) {
        if (tag.shape == ETagShape::Closing || !reader.SkipAttribute())
            return {};
        tag.shape = ETagShape::Distinct;
    }
    if (tag.shape != ETagShape::Closing && reader.Skip('/'))
        tag.shape = ETagShape::Distinct;
    if (!reader.Skip('>'))
        return {};
    tag.end = reader.GetOffset();
    return tag;
}

} // namespace qe::expression
