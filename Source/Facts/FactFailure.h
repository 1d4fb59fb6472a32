#ifndef SOURCE_FACTS_FACTFAILURE_H
#define SOURCE_FACTS_FACTFAILURE_H

#include "Rules/FactGraph.h"

namespace qe {

/// Raises what keeps facts and dimensions from being told apart as an HBNException; returns when
/// the join was added.
void RaiseUnlessAdded(EFactJoin result);

} // namespace qe

#endif
