#ifndef ENGINE_EXPRESSION_MARKUPREMOVER_H
#define ENGINE_EXPRESSION_MARKUPREMOVER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qe::expression {

enum class ETagShape : std::uint8_t
{
    /// No tag begins there.
    None,
    /// `<name>`, which may be two comparisons as well.
    Bare,
    /// `<name attribute="value">` or `<name/>`, with or without attributes: nothing else is
    /// written like that.
    Distinct,
    /// `</name>`: nothing else is written like that.
    Closing,
};

/// A piece of text that has the shape of a markup tag.
struct Tag
{
    ETagShape shape = ETagShape::None;
    std::string_view name;
    /// The offset behind the tag.
    std::size_t end = 0;
};

/// Returns the tag that the text from `offset` on has. Names consist of ASCII letters, digits and
/// "_-:.", and begin with a letter or "_" right behind the "<" or "</"; attribute values stand
/// between quotes and hold no "<". Looks no farther than to the next "<".
[[nodiscard]] Tag ReadTag(std::string_view text, std::size_t offset);

/// A text put together from pieces of a source; it remembers where each piece comes from.
class UntaggedText
{
public:
    /// Appends `piece`, which stands in the source at `sourceOffset` or replaces what does. An
    /// empty piece at the end marks where the end of this text stands.
    void Append(std::string_view piece, std::size_t sourceOffset);

    [[nodiscard]] const std::string& GetText() const noexcept { return mText; }
    /// Returns the offset in the source for an offset in this text.
    [[nodiscard]] std::size_t GetSourceOffset(std::size_t offset) const;

private:
    struct Piece
    {
        std::size_t offset;
        std::size_t sourceOffset;
    };

    std::string mText;
    std::vector<Piece> mPieces;
};

/// Takes the markup out of one expression, as AQE_Expression::GetUntaggedExpression promises.
/// Time is linear in the text but for the table of closing tags.
class MarkupRemover
{
public:
    /// `text` must outlive the remover.
    explicit MarkupRemover(std::string_view text);

    /// Returns the text without markup. Call it once.
    [[nodiscard]] UntaggedText Run();

private:
    /// Copies the token, space or entity at the offset; returns the offset behind it.
    [[nodiscard]] std::size_t CopyPiece(std::size_t offset);
    [[nodiscard]] bool IsMarkup(const Tag& tag) const;
    void FindClosingTags();
    void Emit(std::string_view piece, std::size_t sourceOffset);

    std::string_view mText;
    UntaggedText mResult;
    /// Where the last closing tag of each name ends.
    std::map<std::string_view, std::size_t> mLastClosing;
    /// Whether what has been copied so far ends in an operand, so that an operator may follow.
    bool mOperandBefore = false;
    /// Whether markup has been left out since the last copied piece.
    bool mGap = false;
};

} // namespace qe::expression

#endif
