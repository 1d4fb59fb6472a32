#ifndef SOURCE_JOINS_GATEWAYCALLS_H
#define SOURCE_JOINS_GATEWAYCALLS_H

#include "I18NString.h"
#include "IdClass.h"
#include "Joins/HostNumbers.h"
#include "Rules/FactGraph.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

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

/// Returns the object with that id as a `T` when the object's own id is of the wanted class; null
/// otherwise, also without a gateway (null). The class of `id` plays no part: a gateway
/// may answer with an object of another class, which then counts as absent.
template <typename T>
[[nodiscard]] T* LookUp(amdi_gateway* gateway, const amd_id& id, IdClass wantedClass)
{
    if (gateway == nullptr)
        return nullptr;
    amdi_object* const object = gateway->GetObject(id);
    if (object == nullptr || object->GetId().classCode != wantedClass)
        return nullptr;
    return static_cast<T*>(object);
}

} // namespace qe

#endif
