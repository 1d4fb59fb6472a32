#include "Engine/Services/TextPosition.h"

#include "Engine/Services/Utf8.h"

namespace qe {

TextPosition PositionCounter::MoveTo(std::size_t offset)
{
    for (; mOffset < offset && mOffset < mText.size(); ++mOffset) {
        const char byte = mText[mOffset];
        if (byte == '\n')
            mPosition = {mPosition.line + 1, 1};
        else if (!ContinuesUtf8(byte))
            ++mPosition.column;
    }
    return mPosition;
}

} // namespace qe
