#ifndef PLATFORM_AMDI_SHORTCUT_H
#define PLATFORM_AMDI_SHORTCUT_H

#include "amdi_object.h"

/// An object that stands for another one (class 109).
class QEENGINE_EXPORT amdi_shortcut : public amdi_object
{
public:
    ~amdi_shortcut() override;

    /// Returns the object that the shortcut stands for, which may be a shortcut itself.
    [[nodiscard]] virtual amd_id GetReferencedId() const = 0;

    /// Returns 0 for the ordinary kind of shortcut, the one that is grouped with its target.
    [[nodiscard]] virtual int GetShortcutKind() const = 0;
};

#endif
