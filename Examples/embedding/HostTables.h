#ifndef EXAMPLES_EMBEDDING_HOSTTABLES_H
#define EXAMPLES_EMBEDDING_HOSTTABLES_H

#include "BMT_I_Association.h"
#include "amd_id.h"

#include <string>
#include <vector>

namespace host {

/// What this host knows of one object of its metadata, whatever its class. Fields that a class
/// does not need stay empty.
struct Row
{
    amd_id id;
    const char* name = "";
    amd_id parent;
    /// What a shortcut stands for.
    amd_id target;
    /// The ends of a join, their cardinalities and the join condition.
    amd_id left;
    amd_id right;
    BMT_I_Association::CardinalityRange leftRange;
    BMT_I_Association::CardinalityRange rightRange;
    const char* condition = "";
};

/// Returns the metadata of a chain of bicycle rentals: trips with their riders and stations, dates
/// in two roles, and the staff's pay, which nothing joins to the trips.
[[nodiscard]] const std::vector<Row>& GetTables();

/// Returns the ids of all rows whose name is among the given ones, in the order of the names.
[[nodiscard]] std::vector<amd_id> FindIds(const std::vector<const char*>& names);

/// Returns the name of an object; ids that are in no table are written as "class:number".
[[nodiscard]] std::string GetName(const amd_id& id);

/// Returns all query subjects and shortcuts, or all joins: the graph that the refiner may use.
[[nodiscard]] std::vector<amd_id> GetNodes();
[[nodiscard]] std::vector<amd_id> GetJoins();

} // namespace host

#endif
