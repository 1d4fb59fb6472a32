#ifndef ENGINE_MODEL_OBJECTRECORD_H
#define ENGINE_MODEL_OBJECTRECORD_H

#include "BMT_I_Association.h"
#include "IdClass.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::model {

/// Classes beside those that the metadata layer shares with the refiner.
enum : std::int32_t
{
    IdClassNamespace = 800001,
    /// What lies around everything else; no object of a model is of this class.
    IdClassRoot = 800002,
};

/// The nameless object that stands for the namespace of what lies outside all namespaces.
inline constexpr amd_id kRootId{0, IdClassRoot, 1};

using CardinalityRange = BMT_I_Association::CardinalityRange;

inline constexpr CardinalityRange kZeroToOne{BMT_I_Association::CardinalityZero,
                                             BMT_I_Association::CardinalityOne};
inline constexpr CardinalityRange kOneToOne{BMT_I_Association::CardinalityOne,
                                            BMT_I_Association::CardinalityOne};
inline constexpr CardinalityRange kZeroToMany{BMT_I_Association::CardinalityZero,
                                              BMT_I_Association::CardinalityMany};
inline constexpr CardinalityRange kOneToMany{BMT_I_Association::CardinalityOne,
                                             BMT_I_Association::CardinalityMany};

/// Everything that a model knows of one object. Fields that the object's class does not use keep
/// their defaults.
struct ObjectRecord
{
    amd_id id{};
    std::string name{};
    /// What users see; the builder sets it to the name where none was given.
    std::string displayName{};
    /// The parent: folder, namespace or, for an item, its query subject; empty at the top.
    amd_id parent{};
    /// The nearest namespace around the object; empty outside all namespaces.
    amd_id space{};
    /// The object's own locale; empty: that of the parent counts.
    std::string locale{};
    /// Query subject: the table or view that it reads. Join, filter: the condition.
    std::string text{};
    /// Query subject: sets of its items that no two rows agree in. None: nothing is known of them.
    std::vector<std::vector<std::string>> keys{};
    /// Shortcut, relationship shortcut: what it stands for.
    amd_id referenced{};
    /// Shortcut: 0 is the ordinary kind.
    std::int32_t shortcutKind = 0;
    /// Join, relationship shortcut: the ends.
    amd_id left{};
    amd_id right{};
    /// Join: the cardinalities at the ends. A relationship of class 136 keeps numbers of its own.
    CardinalityRange leftCardinality{};
    CardinalityRange rightCardinality{};
};

/// Returns what the objects of a class are called in messages, such as "query subject".
[[nodiscard]] QEENGINE_EXPORT std::string_view ClassTitle(std::int32_t classCode);

[[nodiscard]] constexpr bool IsContainerClass(std::int32_t classCode)
{
    return classCode == IdClassFolder || classCode == IdClassNamespace;
}

/// Query subjects and shortcuts: what may stand at the end of a join.
[[nodiscard]] constexpr bool IsSubjectClass(std::int32_t classCode)
{
    return classCode == IdClassQuerySubject || classCode == IdClassShortcut;
}

[[nodiscard]] constexpr bool IsJoinClass(std::int32_t classCode)
{
    return classCode == IdClassRelationship || classCode == IdClassRelationship136 ||
           classCode == IdClassRelationshipShortcut || classCode == IdClassSpecJoin;
}

[[nodiscard]] constexpr bool IsFilterClass(std::int32_t classCode)
{
    return classCode == IdClassFilter || classCode == IdClassSpecFilter;
}

/// The kinds of names. Within a namespace a name stands for one subject (query subject or
/// shortcut) and for one filter; several joins may share a name.
enum class ENameKind : std::uint8_t
{
    /// Folders and namespaces.
    Container,
    Subject,
    Item,
    Join,
    Filter,
};

inline constexpr std::size_t kNameKindCount = 5;

/// Returns the kind that the names of a class are of.
[[nodiscard]] constexpr ENameKind NameKindOf(std::int32_t classCode)
{
    if (IsContainerClass(classCode))
        return ENameKind::Container;
    if (IsJoinClass(classCode))
        return ENameKind::Join;
    if (IsFilterClass(classCode))
        return ENameKind::Filter;
    return classCode == IdClassQueryItem ? ENameKind::Item : ENameKind::Subject;
}

/// An object has at most this many parents around it, and as many shortcuts before what it stands
/// for.
inline constexpr std::size_t kMaximumChain = 100;

/// The records of a model in ascending order of their ids.
class QEENGINE_EXPORT ObjectTable
{
public:
    ObjectTable() = default;
    /// Takes records in any order; each id occurs once.
    explicit ObjectTable(std::vector<ObjectRecord> records);

    /// Returns the record with that id, or null. Costs at most a binary search.
    [[nodiscard]] const ObjectRecord* Find(const amd_id& id) const;
    [[nodiscard]] std::span<const ObjectRecord> GetRecords() const { return mRecords; }
    /// Returns the same records to fill in what is not known yet. Their ids must stay.
    [[nodiscard]] std::span<ObjectRecord> EditRecords() { return mRecords; }

    /// Returns the object that `id` finally stands for: follows shortcuts and relationship
    /// shortcuts to their end. Returns the empty id when the chain breaks or is longer
    /// than kMaximumChain.
    [[nodiscard]] amd_id GetTarget(const amd_id& id) const;

private:
    /// Records whose ids have successive numbers.
    struct Run
    {
        amd_id first;
        std::size_t position = 0;
        std::size_t count = 0;
    };

    /// Returns how far behind the first id of the run the id would be; a huge number for an id of
    /// another kind.
    [[nodiscard]] static std::size_t FindInRun(const Run& run, const amd_id& id);

    std::vector<ObjectRecord> mRecords;
    /// In the order of the records. Builders number objects class by class, so that there are few.
    std::vector<Run> mRuns;
};

} // namespace qe::model

#endif
