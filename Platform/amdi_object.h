#ifndef PLATFORM_AMDI_OBJECT_H
#define PLATFORM_AMDI_OBJECT_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

/// What every metadata object knows of itself. Objects belong to their gateway; callers use them
/// within the operation that fetched them and never delete them.
class QEENGINE_EXPORT amdi_object
{
public:
    virtual ~amdi_object();

    /// Returns the object's own id. Its class code stands for the interface that the object
    /// implements.
    [[nodiscard]] virtual amd_id GetId() const = 0;
    [[nodiscard]] virtual I18NString GetName() const = 0;

    /// Returns the parent: the folder or namespace that the object lies in; the empty id at the
    /// top.
    [[nodiscard]] virtual amd_id GetParentId() const = 0;

    /// Replaces `name` by the name under which users see the object.
    virtual void GetDisplayName(I18NString& name) const = 0;
};

#endif
