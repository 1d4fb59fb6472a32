#ifndef TOOLKIT_DRAW_GRAPHVIZ_H
#define TOOLKIT_DRAW_GRAPHVIZ_H

#include "Toolkit/Text/EndingSignals.h"
#include "Toolkit/Text/Progress.h"

#include <chrono>
#include <string>

namespace qe::tool {

enum class EImage
{
    Svg,
    Png,
};

/// A drawing takes longer than this only when it is too large to be looked at.
inline constexpr std::chrono::seconds kLongestDrawing(120);

/// How a drawing is waited for.
struct DrawingWait
{
    std::chrono::milliseconds limit = kLongestDrawing;
    /// Is told the seconds that the drawing takes so far.
    ProgressObserver observer{};
    EEndingSignals signals = EEndingSignals::Caught;
};

/// Returns the image that Graphviz's program `dot` draws of a graph; no shell takes part. Throws
/// InputError when the program is missing, fails or takes too long.
[[nodiscard]] std::string RunGraphviz(const std::string& dot, EImage image,
                                      const DrawingWait& wait = {});

} // namespace qe::tool

#endif
