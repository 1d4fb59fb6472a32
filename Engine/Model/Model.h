#ifndef ENGINE_MODEL_MODEL_H
#define ENGINE_MODEL_MODEL_H

#include "Engine/Model/Names.h"
#include "Engine/Model/ObjectRecord.h"
#include "I18NLocale.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class amdi_object;

namespace qe::model {

class NameLookup;

/// A metadata model that never changes; ModelBuilder makes it. Every end of a join leads to a
/// query subject, and no chain of parents, shortcuts or relationship shortcuts is cyclic.
///
/// Any number of threads may read one model. What its operations point to lives as long as the
/// model. Lists come in ascending order of ids. Lookups by id or exact name cost a binary search at
/// most.
class QEENGINE_EXPORT Model
{
public:
    /// Takes a checked table; use ModelBuilder.
    Model(ObjectTable table, std::string locale);
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
    ~Model();

    /// Returns what the model knows of the object, or null when there is none with that id.
    [[nodiscard]] const ObjectRecord* Find(const amd_id& id) const { return mTable.Find(id); }
    /// Returns the object as the refiner sees it, or null. kRootId has one without a name, though
    /// no record.
    [[nodiscard]] amdi_object* GetObject(const amd_id& id) const;

    [[nodiscard]] std::span<const ObjectRecord> GetRecords() const { return mTable.GetRecords(); }
    /// Returns the objects of one class.
    [[nodiscard]] std::span<const amd_id> GetIds(std::int32_t classCode) const;
    /// Returns all query subjects and shortcuts to query subjects.
    [[nodiscard]] std::span<const amd_id> GetSubjects() const { return mSubjects; }
    /// Returns the joins of all kinds.
    [[nodiscard]] std::span<const amd_id> GetJoins() const { return mJoins; }
    /// Returns the objects that `parent` directly holds, whatever their class; for the empty id
    /// those at the top.
    [[nodiscard]] std::span<const amd_id> GetChildren(const amd_id& parent) const;
    /// Returns the items of a query subject, or of the one that a shortcut stands for.
    [[nodiscard]] std::span<const amd_id> GetItems(const amd_id& subject) const;

    /// Returns the object that `id` finally stands for: itself, unless it is a shortcut or
    /// relationship shortcut. The empty id when there is no such object.
    [[nodiscard]] amd_id GetTarget(const amd_id& id) const { return mTable.GetTarget(id); }
    /// Returns the nearest namespace around the object, or the empty id.
    [[nodiscard]] amd_id GetNamespace(const amd_id& id) const;
    /// Returns the locale of the object or of its nearest parent that has one, else the model's.
    [[nodiscard]] I18NLocale GetLocale(const amd_id& id) const;

    /// Returns the name by which expressions refer to the object, in parts: namespace, query
    /// subject and item as far as they apply.
    [[nodiscard]] QualifiedName GetQualifiedName(const amd_id& id) const;
    /// Finds objects by a name as people write it, in id order. The last part is the object's own
    /// name, the parts before it name parents of it, from outer to inner; any parent may be left
    /// out. An item is also reached through the shortcuts to its query subject. Objects that match
    /// letter by letter rule out those that match only when letter case is put aside; then an
    /// object whose qualified name this is rules out those of which it leaves parents out.
    [[nodiscard]] std::vector<amd_id> FindByName(ENameKind nameKind,
                                                 const QualifiedName& name) const;
    /// Reads the name with ParseQualifiedName. A name with dots in it is found without brackets
    /// too.
    [[nodiscard]] std::vector<amd_id> FindByName(ENameKind nameKind, std::string_view name) const;
    /// Returns the names that a wrong one was probably meant to be, best first.
    [[nodiscard]] std::vector<std::string> SuggestNames(ENameKind nameKind,
                                                        std::string_view name) const;
    /// Returns the one object of exactly that name in the scope: a subject, join or filter of
    /// the namespace `scope` (empty: outside all namespaces), an item of the query subject
    /// `scope`, a namespace or folder anywhere (`scope` empty). Returns the empty id when there is
    /// none; of several, the one with the least id.
    [[nodiscard]] amd_id FindExact(ENameKind nameKind, const amd_id& scope,
                                   std::string_view name) const;
    /// Returns the namespace of exactly that name, or the empty id.
    [[nodiscard]] amd_id FindNamespace(std::string_view name) const;

private:
    void ListIds();

    ObjectTable mTable;
    std::string mLocale;
    std::unique_ptr<const NameLookup> mNames;
    /// The objects, at the positions of their records.
    std::vector<std::unique_ptr<amdi_object>> mObjects;
    ObjectRecord mRootRecord{.id = kRootId};
    std::unique_ptr<amdi_object> mRoot;
    /// All ids, by class, then id.
    std::vector<amd_id> mIdsByClass;
    /// All ids, by parent, then id, with the parents beside them.
    std::vector<amd_id> mChildren;
    std::vector<amd_id> mParents;
    std::vector<amd_id> mSubjects;
    std::vector<amd_id> mJoins;
};

} // namespace qe::model

#endif
