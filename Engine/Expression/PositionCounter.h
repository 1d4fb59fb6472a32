#ifndef ENGINE_EXPRESSION_POSITIONCOUNTER_H
#define ENGINE_EXPRESSION_POSITIONCOUNTER_H

#include "Engine/Expression/TextPosition.h"

#include <string_view>

namespace qe::expression {

/// Turns ascending byte offsets of one text into positions, in one pass over the text.
class PositionCounter
{
public:
    /// `text` must outlive the counter.
    explicit PositionCounter(std::string_view text) : mText(text) {}

    /// Gives the position of the byte at `offset`, which is not before the last one asked for.
    /// An offset behind the text gives the position of its end.
    [[nodiscard]] TextPosition MoveTo(std::size_t offset);

private:
    std::string_view mText;
    std::size_t mOffset = 0;
    TextPosition mPosition;
};

} // namespace qe::expression

#endif
