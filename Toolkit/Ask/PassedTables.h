#ifndef TOOLKIT_ASK_PASSEDTABLES_H
#define TOOLKIT_ASK_PASSEDTABLES_H

#include "Toolkit/Ask/Answer.h"
#include "amd_id.h"

#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// A path whose passed tables are skipped. The joins that stand in for those over a skipped table
/// have ids that no model has.
struct ShortenedPath
{
    std::vector<amd_id> joins{};
    /// The answer, which knows these joins as well.
    Answer answer{};
};

/// Returns the path without the query subjects that it only passes: those that the question does
/// not name and at which all its joins meet in the same columns. What they connect is joined
/// directly, as note.party_id = person.party_id without party. Rows that refer to nothing, and
/// values that the skipped table does not have, make a difference.
[[nodiscard]] ShortenedPath SkipPassedTables(const model::Model& model, const Answer& answer,
                                             const std::vector<amd_id>& path);

} // namespace qe::tool

#endif
