#ifndef ENGINE_MODEL_DRAFTCOMPILER_H
#define ENGINE_MODEL_DRAFTCOMPILER_H

#include "Engine/Model/ObjectDraft.h"
#include "Engine/Model/ObjectRecord.h"

#include <deque>

namespace qe::model {

/// Turns drafts into the records of a model: follows their references and refuses what no model
/// may hold. Throws a ModelError that lists all problems in the order of the drafts.
///
/// Costs O(n log n) for n drafts without mistakes; each of the first wrong names costs a look at
/// all names for suggestions.
[[nodiscard]] ObjectTable CompileDrafts(const std::deque<ObjectDraft>& drafts);

} // namespace qe::model

#endif
