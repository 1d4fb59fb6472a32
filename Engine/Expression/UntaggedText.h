#ifndef ENGINE_EXPRESSION_UNTAGGEDTEXT_H
#define ENGINE_EXPRESSION_UNTAGGEDTEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe::expression {

/// A text put together from pieces of a source; it remembers where each piece comes from.
class UntaggedText
{
public:
    /// Appends `piece`, which stands in the source at `sourceOffset` or replaces what does. An
    /// empty piece at the end tells where the end of this text stands.
    void Append(std::string_view piece, std::size_t sourceOffset);

    [[nodiscard]] const std::string& GetText() const noexcept { return mText; }
    /// Gives the offset in the source for an offset in this text.
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

} // namespace qe::expression

#endif
