#ifndef TOOLKIT_DRAW_DOTWRITER_H
#define TOOLKIT_DRAW_DOTWRITER_H

#include <string>
#include <string_view>

namespace qe::tool {

struct Picture;

/// Returns the picture in Graphviz's language. What lines and shapes mean does not depend on
/// colour: facts have a double border, dimensions round corners, shortcuts a folded corner; the
/// chosen path is thick, alternatives are dashed, joins to what a shortcut stands for dotted. Node
/// number 3 has the id "n3" in what Graphviz makes of it, edge number 5 "e5".
[[nodiscard]] std::string WriteDot(const Picture& picture);

/// Returns the text in quotes as Graphviz reads labels: shown as it is, control characters and
/// marks of direction as escapes.
[[nodiscard]] std::string QuoteForDot(std::string_view text);

} // namespace qe::tool

#endif
