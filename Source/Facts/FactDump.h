#ifndef SOURCE_FACTS_FACTDUMP_H
#define SOURCE_FACTS_FACTDUMP_H

#include <iosfwd>

namespace qe {

class FactGraph;

/// Writes the nodes by id and the tree below each fact. A node that lies below itself is named
/// where it comes back and not written out again.
void DumpFactGraph(const FactGraph& graph, std::ostream& out);

} // namespace qe

#endif
