#ifndef TOOLKIT_DRAW_PICTUREFORMAT_H
#define TOOLKIT_DRAW_PICTUREFORMAT_H

#include "Toolkit/Draw/Graphviz.h"

#include <iosfwd>
#include <string>

namespace qe::tool {

struct FormatInput;
struct Picture;

/// Returns the picture as an SVG document whose parts are called by the names of what they show.
/// Throws like RunGraphviz.
[[nodiscard]] std::string MakeSvg(const Picture& picture, const DrawingWait& wait = {});

/// Write the answer as a picture. The image formats throw InputError without Graphviz.
void WriteDotFormat(std::ostream& out, const FormatInput& input);
void WriteSvgFormat(std::ostream& out, const FormatInput& input);
void WritePngFormat(std::ostream& out, const FormatInput& input);

} // namespace qe::tool

#endif
