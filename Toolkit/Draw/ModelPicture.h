#ifndef TOOLKIT_DRAW_MODELPICTURE_H
#define TOOLKIT_DRAW_MODELPICTURE_H

#include "Toolkit/Draw/Picture.h"

#include <vector>

namespace qe::tool {

struct ToolModel;

/// Draws a model: all of it, or, with `around` not empty, those subjects and what is joined to
/// them. Of more than `limit` subjects, those nearest to `around` and with most joins are kept; 0
/// keeps all.
[[nodiscard]] Picture DrawModel(const ToolModel& model, const std::vector<amd_id>& around,
                                std::size_t limit);

} // namespace qe::tool

#endif
