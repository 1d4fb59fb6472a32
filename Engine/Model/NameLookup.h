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

/// Finds objects by the names that people write. Refers to the table, which must outlive it.
class NameLookup
{
public:
    enum class ECase : std::uint8_t
    {
        Exact,
        Folded,
    };

    explicit NameLookup(const ObjectTable& table);

    /// See Model::FindExact.
    [[nodiscard]] amd_id FindExact(ENameKind nameKind, const amd_id& scope,
                                   std::string_view name) const;

    /// See Model::FindByName.
    [[nodiscard]] std::vector<amd_id> Match(ENameKind nameKind, const QualifiedName& name) const;

    /// Gives the names that `name` was probably meant to be, best first: qualified ones when it
    /// is qualified itself. Reads all names of the kind.
    [[nodiscard]] std::vector<std::string> Suggest(ENameKind nameKind,
                                                   const QualifiedName& name) const;

    /// Gives the name by which expressions refer to the object: namespace, query subject and item
    /// as far as they apply. Folders have the path of their parents instead.
    [[nodiscard]] QualifiedName GetQualifiedName(const amd_id& id) const;

private:
    [[nodiscard]] const NameIndex& IndexOf(ENameKind nameKind) const
    {
        return mIndexes[static_cast<std::size_t>(nameKind)];
    }
    [[nodiscard]] std::vector<amd_id> Match(ENameKind nameKind, const QualifiedName& name,
                                            ECase letterCase) const;
    [[nodiscard]] std::vector<amd_id> MatchItems(const QualifiedName& name, ECase letterCase) const;
    /// Tells whether the parts before the last one name parents of the object.
    [[nodiscard]] bool ParentsMatch(const amd_id& id, const QualifiedName& name,
                                    ECase letterCase) const;

    const ObjectTable* mTable;
    std::array<NameIndex, kNameKindCount> mIndexes;
};

} // namespace qe::model

#endif
