#ifndef ENGINE_EXPRESSION_TEXTPOSITION_H
#define ENGINE_EXPRESSION_TEXTPOSITION_H

#include <cstddef>

namespace qe::expression {

/// A place in a text. Lines and columns count from 1, columns in characters.
struct TextPosition
{
    std::size_t line = 1;
    std::size_t column = 1;

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

} // namespace qe::expression

#endif
