#ifndef PLATFORM_AMDI_RELATIONSHIPSHORTCUT_H
#define PLATFORM_AMDI_RELATIONSHIPSHORTCUT_H

#include "amdi_object.h"

/// An object that stands for a relationship and has ends of its own (class 110).
class QEENGINE_EXPORT amdi_relationshipShortcut : public amdi_object
{
public:
    ~amdi_relationshipShortcut() override;

    /// Returns the relationship, or the relationship shortcut, that this one stands for.
    [[nodiscard]] virtual amd_id GetReferencedId() const = 0;
    /// Returns the second end as seen through the shortcut.
    [[nodiscard]] virtual amd_id GetRightId() const = 0;
    /// Returns the first end as seen through the shortcut.
    [[nodiscard]] virtual amd_id GetLeftId() const = 0;
};

#endif
