#ifndef ENGINE_MODEL_DRAFTRULES_H
#define ENGINE_MODEL_DRAFTRULES_H

#include "Engine/Model/ObjectDraft.h"
#include "Engine/Model/ObjectRecord.h"
#include "Engine/Model/ProblemList.h"

#include <vector>

namespace qe::model {

/// What no model may break. Each check adds its problems and goes on.

/// Refuses empty names.
void CheckNames(const std::vector<PlacedDraft>& drafts, ProblemList& problems);

/// Refuses a name that an earlier object has where one name must stand for one object: namespaces
/// in the whole model, folders in their parent, items in their query subject, subjects and
/// filters in their namespace. Drafts that are not in the table are left out.
void CheckUniqueNames(const std::vector<PlacedDraft>& drafts, ProblemList& problems);

/// Refuses chains of parents that are cyclic, and puts what is in such a chain at the top.
void BreakParentCycles(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
                       ProblemList& problems);

/// Returns the nearest namespace among `parent` and its parents, or the empty id.
[[nodiscard]] amd_id SpaceAround(const ObjectTable& table, const amd_id& parent);

/// Refuses cardinalities of relationships and query joins that are no ranges.
void CheckCardinalities(const std::vector<PlacedDraft>& drafts, ProblemList& problems);

/// Refuses chains of shortcuts or relationship shortcuts that are cyclic, and relationship
/// shortcuts that stand for anything but a relationship of class 102.
void CheckTargets(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
                  ProblemList& problems);

/// Refuses ends that do not lead to a query subject.
void CheckEnds(const std::vector<PlacedDraft>& drafts, const ObjectTable& table,
               ProblemList& problems);

} // namespace qe::model

#endif
