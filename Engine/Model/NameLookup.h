#ifndef ENGINE_MODEL_NAMELOOKUP_H
#define ENGINE_MODEL_NAMELOOKUP_H

#include "Engine/Model/NameIndex.h"
#include "Engine/Model/ObjectTable.h"
#include "Engine/Model/QualifiedName.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

/// Finds objects by the names that people write. Refers to the table, which must outlive it.
class NameLookup
{
public:
    explicit NameLookup(const ObjectTable& table);

    /// Gives the one object of exactly that name: a subject, join or filter of the namespace
    /// `scope` (empty: outside all namespaces), an item of the query subject `scope`, a namespace
    /// or folder anywhere (`scope` empty). Gives the empty id when there is none; of several, the
    /// one with the least id.
    [[nodiscard]] amd_id FindExact(EFamily family, const amd_id& scope,
                                   std::string_view name) const;

    /// Gives every object that `name` can mean, in id order. The last part is the object's own
    /// name, the parts before it name holders of it, from outer to inner; any holder may be left
    /// out. An item is also reached through the shortcuts to its query subject. Objects that match
    /// letter by letter rule out those that match only when letter case is put aside.
    [[nodiscard]] std::vector<amd_id> Match(EFamily family, const QualifiedName& name) const;

    /// Gives the names that `name` was probably meant to be, best first: qualified ones when it
    /// is qualified itself. Reads all names of the family.
    [[nodiscard]] std::vector<std::string> Suggest(EFamily family, const QualifiedName& name) const;

    /// Gives the name by which expressions refer to the object: namespace, query subject and item
    /// as far as they apply. Folders have the path of their holders instead.
    [[nodiscard]] QualifiedName GetQualifiedName(const amd_id& id) const;

private:
    enum class ECase : std::uint8_t
    {
        Exact,
        Folded,
    };

    [[nodiscard]] const NameIndex& IndexOf(EFamily family) const
    {
        return mIndexes[static_cast<std::size_t>(family)];
    }
    [[nodiscard]] std::vector<amd_id> Match(EFamily family, const QualifiedName& name,
                                            ECase letterCase) const;
    [[nodiscard]] std::vector<amd_id> MatchItems(const QualifiedName& name, ECase letterCase) const;
    /// Tells whether the parts before the last one name holders of the object.
    [[nodiscard]] bool HoldersMatch(const amd_id& id, const QualifiedName& name,
                                    ECase letterCase) const;

    const ObjectTable* mTable;
    std::array<NameIndex, FamilyCount> mIndexes;
};

} // namespace qe::model

#endif
