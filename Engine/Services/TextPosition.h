#ifndef ENGINE_SERVICES_TEXTPOSITION_H
#define ENGINE_SERVICES_TEXTPOSITION_H

#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <string_view>

namespace qe {

/// A place in a text. Lines and columns count from 1, columns in characters.
struct TextPosition
{
    std::size_t line = 1;
    std::size_t column = 1;

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// Turns ascending byte offsets of one text in UTF-8 into positions, in one pass over the text.
class PositionCounter
{
public:
    /// `text` must outlive the counter.
    explicit PositionCounter(std::string_view text) : mText(text) {}

    /// Returns the position of the byte at `offset`, which is not before the last one asked for.
    /// An offset behind the text has the position of its end.
    [[nodiscard]] QEENGINE_EXPORT TextPosition MoveTo(std::size_t offset);

private:
    std::string_view mText;
    std::size_t mOffset = 0;
    TextPosition mPosition;
};

} // namespace qe

#endif
