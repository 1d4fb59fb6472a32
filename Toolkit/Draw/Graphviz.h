#ifndef TOOLKIT_DRAW_GRAPHVIZ_H
#define TOOLKIT_DRAW_GRAPHVIZ_H

#include <string>

namespace qe::tool {

enum class EImage
{
    Svg,
    Png,
};

/// Returns the image that Graphviz's program `dot` draws of a graph; no shell takes part. Throws
/// InputError when the program is missing or fails.
[[nodiscard]] std::string RunGraphviz(const std::string& dot, EImage image);

} // namespace qe::tool

#endif
