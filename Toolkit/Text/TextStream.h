#ifndef TOOLKIT_TEXT_TEXTSTREAM_H
#define TOOLKIT_TEXT_TEXTSTREAM_H

#include <ios>
#include <sstream>

namespace qe::tool {

/// A text that is written like a stream. Throws std::bad_alloc where memory runs out, at which a
/// std::ostringstream only stops taking text, so that the end would be missing without a word.
class TextStream : public std::ostringstream
{
public:
    TextStream() { exceptions(std::ios::badbit); }
};

} // namespace qe::tool

#endif
