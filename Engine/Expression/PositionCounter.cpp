#include "Engine/Expression/PositionCounter.h"

namespace qe::expression {

TextPosition PositionCounter::MoveTo(std::size_t offset)
{
    for (; mOffset < offset && mOffset < mText.size(); ++mOffset) {
        const auto unit = static_cast<unsigned char>(mText[mOffset]);
        const bool continuesCharacter = (unit & 0xC0U) == 0x80U;
        if (unit == '\n')
            mPosition = {mPosition.line + 1, 1};
        else if (!continuesCharacter)
            ++mPosition.column;
    }
    return mPosition;
}

} // namespace qe::expression
