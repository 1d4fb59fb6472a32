#ifndef TOOLKIT_DRAW_PICTURES_H
#define TOOLKIT_DRAW_PICTURES_H

#include "Toolkit/Draw/Picture.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstddef>
#include <vector>

namespace qe::tool {

struct ToolModel;

/// Returns the picture of a model: all of it, or, with `around` not empty, those subjects and what
/// is joined to them. Of more than `limit` subjects, those nearest to `around` and with most joins
/// are kept.
[[nodiscard]] Picture DrawModel(const ToolModel& model, const std::vector<amd_id>& around,
                                ListLimit limit);

struct Answer;
struct ToolModel;

/// How much of a candidate graph is drawn.
struct PictureLimits
{
    /// A graph of so many subjects is drawn as a whole.
    std::size_t wholeGraph = 40;
    /// Of a larger one, so many neighbours of what the answer touches are drawn as well.
    std::size_t neighbours = 10;
    /// The alternatives that are marked at most.
    ListLimit alternatives{10};
};

/// Returns the paths that are as good as the one taken: that one first, then the others that are
/// equally cheap. Nothing when there is no path.
[[nodiscard]] std::vector<std::vector<amd_id>> ListShownPaths(const Answer& answer,
                                                              ListLimit limit);

/// Returns the picture of an answer in its candidate graph.
[[nodiscard]] Picture DrawAnswer(const ToolModel& model, const Answer& answer,
                                 const PictureLimits& limits);

} // namespace qe::tool

#endif
