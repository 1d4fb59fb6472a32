#ifndef TOOLKIT_MODEL_DECISION_H
#define TOOLKIT_MODEL_DECISION_H

#include "amd_id.h"

#include <string>
#include <vector>

namespace qe::tool {

/// What a modeller decided about equally good paths. It holds for requests that name all of its
/// subjects, whatever else they name; without subjects it holds for all.
struct Decision
{
    /// In ascending order; a model has one decision for each set.
    std::vector<amd_id> subjects{};
    /// The joins that such requests favour.
    std::vector<amd_id> preferred{};
    /// The joins that they use only where nothing else leads. None is preferred too.
    std::vector<amd_id> avoided{};
    /// Why; may be empty.
    std::string reason{};
};

/// A finding of a check that its modeller knows and accepts.
struct AcceptedFinding
{
    /// The finding's id, which a check shows. The finding may be gone.
    std::string id{};
    /// Why; never empty.
    std::string reason{};
};

} // namespace qe::tool

#endif
