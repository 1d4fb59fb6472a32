#ifndef TOOLKIT_ASK_AMBIGUITY_H
#define TOOLKIT_ASK_AMBIGUITY_H

#include "Toolkit/Ask/Answer.h"

#include <cstddef>
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

/// Returns what would make the candidate at the position the only cheapest one; nothing when no
/// joins tell it from the others. The answer has an ambiguity, and the candidate is one of the
/// equally cheap ones. Takes time in proportion to the joins of all of these.
[[nodiscard]] std::optional<Turn> FindTurn(const model::Model& model, const Answer& answer,
                                           std::size_t alternative);

} // namespace qe::tool

#endif
