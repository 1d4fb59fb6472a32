#ifndef PLATFORM_AMDI_GATEWAY_H
#define PLATFORM_AMDI_GATEWAY_H

#include "I18NLocale.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

class amdi_object;

/// Access to the metadata: one object at a time, by id. The caller of the refiner implements it.
class QEENGINE_EXPORT amdi_gateway
{
public:
    virtual ~amdi_gateway();

    /// Returns the object with that id, or null when there is none. The object stays the gateway's
    /// and must live at least as long as the operation that asked for it.
    [[nodiscard]] virtual amdi_object* GetObject(const amd_id& id) = 0;

    /// Returns the locale in which expressions of that object are parsed and written.
    [[nodiscard]] virtual I18NLocale GetLocale(const amd_id& id) = 0;

    /// Returns the object, usually the namespace, whose name stands first in references to the
    /// given object; the empty id when there is none. An object with an empty name stands for the
    /// qualifier that is not written.
    [[nodiscard]] virtual amd_id GetQualifierId(amd_id id) = 0;
};

#endif
