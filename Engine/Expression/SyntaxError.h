#ifndef ENGINE_EXPRESSION_SYNTAXERROR_H
#define ENGINE_EXPRESSION_SYNTAXERROR_H

#include "Engine/Services/TextPosition.h"

#include <string>

namespace qe::expression {

/// Why a text is no expression: the first place where it cannot go on.
struct SyntaxError
{
    TextPosition position;
    /// What could have stood there, in English: "an operand", "')'".
    std::string expected;
    /// What stands there: the text itself between quotes, shortened, or "the end of the text".
    std::string found;
};

} // namespace qe::expression

#endif
