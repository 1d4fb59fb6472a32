#ifndef TOOLKIT_ASK_AMBIGUITY_H
#define TOOLKIT_ASK_AMBIGUITY_H

#include "Toolkit/Ask/Answer.h"

#include <optional>

namespace qe::model {
class Model;
}

namespace qe::tool {

/// Returns which other candidates of the answer are equally cheap, and what would turn the choice
/// to the next of them; nothing when there is no other. Reads the notices for whether the list of
/// candidates is whole. Takes time in proportion to the joins of all equally cheap candidates.
[[nodiscard]] std::optional<Ambiguity> FindAmbiguity(const model::Model& model,
                                                     const Answer& answer);

} // namespace qe::tool

#endif
