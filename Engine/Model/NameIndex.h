#ifndef ENGINE_MODEL_NAMEINDEX_H
#define ENGINE_MODEL_NAMEINDEX_H

#include "amd_id.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::model {

/// Finds the objects of one name kind by name. Lookups are binary searches; the suggestions for a
/// wrong name read every name of the scope.
///
/// Every object has a scope, the object within which its name is looked up: the query subject of
/// an item, the namespace of most others. Answers are ordered by scope, then id.
class NameIndex
{
public:
    struct Entry
    {
        std::string folded;
        std::string name;
        amd_id scope;
        amd_id id;
    };

    NameIndex() = default;
    /// Takes entries in any order; `folded` need not be set.
    explicit NameIndex(std::vector<Entry> entries);

    /// Gives the object of exactly that name in the scope, or the empty id. Of several, the one
    /// with the least id.
    [[nodiscard]] amd_id Find(const amd_id& scope, std::string_view name) const;

    /// Gives the objects of that name in the scope, letter case aside.
    [[nodiscard]] std::span<const Entry> FindFolded(const amd_id& scope,
                                                    std::string_view name) const;
    /// Gives the objects of that name in any scope, letter case aside.
    [[nodiscard]] std::span<const Entry> FindFolded(std::string_view name) const;

    /// Adds the names of the scope that come near `name`.
    void CollectNames(const amd_id& scope, std::vector<std::string_view>& names) const;
    /// Adds the names of all scopes.
    void CollectNames(std::vector<std::string_view>& names) const;

private:
    /// Ordered by (folded name, scope, id).
    std::vector<Entry> mEntries;
};

} // namespace qe::model

#endif
