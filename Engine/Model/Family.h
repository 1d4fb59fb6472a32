#ifndef ENGINE_MODEL_FAMILY_H
#define ENGINE_MODEL_FAMILY_H

#include "Engine/Model/ObjectRecord.h"

#include <cstddef>
#include <cstdint>

namespace qe::model {

/// The kinds of names. Within a namespace a name stands for one subject (query subject or
/// shortcut) and for one filter; several joins may share a name.
enum class EFamily : std::uint8_t
{
    Container,
    Subject,
    Item,
    Join,
    Filter,
};

inline constexpr std::size_t FamilyCount = 5;

/// Tells which family the names of a class belong to.
[[nodiscard]] constexpr EFamily FamilyOf(std::int32_t classCode)
{
    if (IsContainerClass(classCode))
        return EFamily::Container;
    if (IsJoinClass(classCode))
        return EFamily::Join;
    if (IsFilterClass(classCode))
        return EFamily::Filter;
    return classCode == IdClassQueryItem ? EFamily::Item : EFamily::Subject;
}

} // namespace qe::model

#endif
