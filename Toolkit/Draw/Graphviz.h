#ifndef TOOLKIT_DRAW_GRAPHVIZ_H
#define TOOLKIT_DRAW_GRAPHVIZ_H

#include <string>

namespace qe::tool {

enum class EImage
{
    Svg,
    Png,
};

/// Has Graphviz's program `dot` lay out and draw a graph; no shell takes part. Throws InputError
/// when the program is missing or fails.
[[nodiscard]] std::string RunGraphviz(const std::string& dot, EImage image);

} // namespace qe::tool

#endif
