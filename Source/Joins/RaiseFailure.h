#ifndef SOURCE_JOINS_RAISEFAILURE_H
#define SOURCE_JOINS_RAISEFAILURE_H

#include "I18NString.h"
#include "Joins/HostNumbers.h"
#include "Rules/FactGraph.h"

#include <vector>

namespace qe {

/// Logs the failure and raises it as an HBNException of the component "QE". `parameters` are the
/// texts that its message takes, at most six.
void RaiseFailure(const host::Failure& failure, const std::vector<I18NString>& parameters = {});

/// Raises, as an HBNException, what kept facts and dimensions from being told apart; returns when
/// the join was added.
void RaiseUnlessAdded(EFactJoin result);

/// Raises the broken invariant as an ORVAssertError.
void RaiseBrokenInvariant(const host::BrokenInvariant& invariant);

} // namespace qe

#endif
