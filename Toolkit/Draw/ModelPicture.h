#ifndef TOOLKIT_DRAW_MODELPICTURE_H
#define TOOLKIT_DRAW_MODELPICTURE_H

#include "Toolkit/Draw/Picture.h"
#include "Toolkit/Text/ListLimit.h"

#include <vector>

namespace qe::tool {

struct ToolModel;

/// Draws a model: all of it, or, with `around` not empty, those subjects and what is joined to
/// them. Of more than `limit` subjects, those nearest to `around` and with most joins are kept.
[[nodiscard]] Picture DrawModel(const ToolModel& model, const std::vector<amd_id>& around,
                                ListLimit limit);

} // namespace qe::tool

#endif
