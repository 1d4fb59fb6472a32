#ifndef ENGINE_MODEL_NAMELOOKUP_H
#define ENGINE_MODEL_NAMELOOKUP_H

#include "Engine/Model/Names.h"
#include "Engine/Model/ObjectRecord.h"
#include "amd_id.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qe::model {

/// Finds the objects of one name kind by name: what shares a name, letter case aside, stands
/// together. Suggestions for a wrong name read every name.
///
/// Every object has a scope, the object within which its name is looked up: the query subject of
/// an item, the namespace of most others. Results are ordered by scope, then id.
class NameIndex
{
public:
    struct Entry
    {
        std::string_view name;
        amd_id scope;
        amd_id id;
    };

    NameIndex() = default;
    /// Takes entries in any order. Refers to their names.
    explicit NameIndex(const std::vector<Entry>& entries);

    /// Returns the object of exactly that name in the scope, or the empty id. Of several, the one
    /// with the least id.
    [[nodiscard]] amd_id Find(const amd_id& scope, std::string_view name) const;

    /// Returns the objects of that name in the scope, letter case aside.
    [[nodiscard]] std::span<const Entry> FindFolded(const amd_id& scope,
                                                    std::string_view name) const;
    /// Returns the objects of that name in any scope, letter case aside.
    [[nodiscard]] std::span<const Entry> FindFolded(std::string_view name) const;

    /// Appends the names of all scopes.
    void CollectNames(std::vector<std::string_view>& names) const;

private:
    /// Where the entries of one folded name stand.
    struct Range
    {
        std::size_t first = 0;
        std::size_t count = 0;
    };

    /// Returns the range of the folded name for each entry, and counts the entries in it.
    [[nodiscard]] std::vector<Range*> CountNames(const std::vector<Entry>& entries);

    /// By folded name. Nothing depends on the order in which a hash map has them.
    std::unordered_map<std::string, Range> mRanges;
    /// Range by range in the order of their first entries, each ordered by (scope, id).
    std::vector<Entry> mEntries;
};

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
    /// Finds objects of these kinds only.
    NameLookup(const ObjectTable& table, std::span<const ENameKind> nameKinds);

    /// See Model::FindExact.
    [[nodiscard]] amd_id FindExact(ENameKind nameKind, const amd_id& scope,
                                   std::string_view name) const;

    /// See Model::FindNamespace.
    [[nodiscard]] amd_id FindNamespace(std::string_view name) const;

    /// See Model::FindByName.
    [[nodiscard]] std::vector<amd_id> Match(ENameKind nameKind, const QualifiedName& name) const;

    /// Returns the names that `name` was probably meant to be, best first: qualified ones when it
    /// is qualified itself. Reads all names of the kind.
    [[nodiscard]] std::vector<std::string> Suggest(ENameKind nameKind,
                                                   const QualifiedName& name) const;

    /// Returns the name by which expressions refer to the object: namespace, query subject and item
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
    /// Returns whether the parts before the last one name parents of the object.
    [[nodiscard]] bool ParentsMatch(const amd_id& id, const QualifiedName& name,
                                    ECase letterCase) const;

    const ObjectTable* mTable;
    std::array<NameIndex, kNameKindCount> mIndexes;
};

} // namespace qe::model

#endif
