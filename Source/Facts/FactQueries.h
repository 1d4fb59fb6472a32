#ifndef SOURCE_FACTS_FACTQUERIES_H
#define SOURCE_FACTS_FACTQUERIES_H

#include "Rules/FactGraph.h"
#include "amd_id.h"

#include <iosfwd>
#include <vector>

namespace qe {

/// Which dimensions are asked for.
enum class EDimensions
{
    /// Those that the query subject is joined to itself.
    Own,
    /// Also those behind them, each followed by its own before the next.
    All,
};

/// Appends the dimensions of the node of the query subject that are not in `dimensions` yet;
/// nothing when the joins do not know it.
void AppendDimensions(const FactGraph& graph, const amd_id& subject, EDimensions which,
                      std::vector<amd_id>& dimensions);

/// Appends one query subject for each fact, in the order in which they became facts.
void AppendFacts(const FactGraph& graph, std::vector<amd_id>& facts);

/// Appends the dimensions that all facts share; of a single fact, the fact itself. What was in
/// `dimensions` before counts as dimensions of the first fact.
void AppendSharedDimensions(const FactGraph& graph, std::vector<amd_id>& dimensions);

/// Writes the nodes by id, the tree below each fact, and the answers to the questions above. A node
/// that lies below itself is named where it comes back and not written out again.
void DumpFacts(const FactGraph& graph, std::ostream& out);

} // namespace qe

#endif
