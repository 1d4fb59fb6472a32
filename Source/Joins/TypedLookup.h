#ifndef SOURCE_JOINS_TYPEDLOOKUP_H
#define SOURCE_JOINS_TYPEDLOOKUP_H

#include "IdClass.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

namespace qe {

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
