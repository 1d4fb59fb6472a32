#ifndef SOURCE_MAINOBJECT_MAINOBJECT_H
#define SOURCE_MAINOBJECT_MAINOBJECT_H

#include "MainObject/PathJoins.h"
#include "MainObjectPathSelector.h"
#include "amd_id.h"

#include <optional>
#include <set>
#include <vector>

namespace qe {

/// The main object of a join path and what goes with it.
struct MainObject
{
    amd_id id;
    /// The main object and what is joined to it one-to-one, in tree order.
    std::vector<amd_id> oneToOneObjects;
    std::set<amd_id> pathObjects;
};

/// Returns the main object of a path that has to reach all subjects, or nothing when it has none.
/// `joins` are the joins of `path`.
[[nodiscard]] std::optional<MainObject>
FindMainObject(const PathJoins& joins, const std::vector<amd_id>& path,
               const std::vector<amd_id>& subjects, const MainObjectPathSelector::Options& options);

} // namespace qe

#endif
