#include "Engine/Expression/UntaggedText.h"

#include <algorithm>
#include <iterator>

namespace qe::expression {

void UntaggedText::Append(std::string_view piece, std::size_t sourceOffset)
{
    const bool continues =
        !mPieces.empty() &&
        mPieces.back().sourceOffset + (mText.size() - mPieces.back().offset) == sourceOffset;
    if (!continues)
        mPieces.push_back({mText.size(), sourceOffset});
    mText += piece;
}

std::size_t UntaggedText::GetSourceOffset(std::size_t offset) const
{
    const auto startsBehind = [](std::size_t wanted, const Piece& piece) {
        return wanted < piece.offset;
    };
    const auto behind = std::upper_bound(mPieces.begin(), mPieces.end(), offset, startsBehind);
    if (behind == mPieces.begin())
        return offset;
    const Piece& piece = *std::prev(behind);
    return piece.sourceOffset + (offset - piece.offset);
}

} // namespace qe::expression
