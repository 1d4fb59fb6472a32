#ifndef ENGINE_MODEL_MODELBUILDER_H
#define ENGINE_MODEL_MODELBUILDER_H

#include "Engine/Model/ObjectDraft.h"
#include "Engine/Model/ObjectRecord.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace qe::model {

class Model;

/// What may be said of any object when it is added.
struct ObjectOptions
{
    /// The object's id; empty: the builder numbers it.
    amd_id id{};
    /// What users see; empty: the name.
    std::string displayName{};
    /// A language tag; empty: that of the parent counts.
    std::string locale{};
    /// Query subject: the table or view that it reads, any text.
    std::string source{};
    /// Query subject: sets of its items that no two rows agree in, by name; not checked.
    std::vector<std::vector<std::string>> keys{};
    /// Anything by which the caller finds the object again; problems carry it.
    std::int64_t tag = 0;
};

/// One end of a join: a query subject or shortcut, and how many of its rows meet one row of the
/// other end.
struct JoinEnd
{
    Reference subject{};
    CardinalityRange cardinality = kOneToOne;
};

/// What a shortcut stands for; kind 0 is the ordinary one.
struct ShortcutTarget
{
    Reference object{};
    std::int32_t kind = 0;
};

/// What a relationship shortcut stands for, and its own ends.
struct RelationshipShortcutTarget
{
    Reference relationship{};
    Reference left{};
    Reference right{};
};

/// Puts a model together:
///
///     ModelBuilder builder;
///     const amd_id sales = builder.AddNamespace("Sales");
///     const amd_id orders = builder.AddQuerySubject(sales, "Orders");
///     const amd_id customer = builder.AddQuerySubject(sales, "Customer");
///     builder.AddItem(orders, "Customer Key");
///     builder.AddItem(customer, "Key");
///     builder.AddRelationship(sales, "Orders-Customer", {orders, kOneToMany},
///                             {customer, kOneToOne},
///                             "[Sales].[Orders].[Customer Key] = [Sales].[Customer].[Key]");
///     const std::shared_ptr<const Model> model = builder.Build();
///
/// Objects may be added in any order; references may name objects that are added later. Nothing
/// is checked before Build, which reports all problems at once. Each Add returns the object's id:
/// the one asked for, or {0, class, n} with the least n above those given out before that no object
/// of the class has yet.
class QEENGINE_EXPORT ModelBuilder
{
public:
    /// Takes the locale of objects that have none and whose parents have none.
    explicit ModelBuilder(std::string locale = "en");

    /// Keeps an id from being given to an object that comes without one: for a caller who knows
    /// that a later object will ask for it.
    void Reserve(const amd_id& id);

    amd_id AddNamespace(std::string name);
    amd_id AddNamespace(const Reference& parent, std::string name,
                        const ObjectOptions& options = {});
    amd_id AddFolder(const Reference& parent, std::string name, const ObjectOptions& options = {});
    amd_id AddQuerySubject(const Reference& parent, std::string name,
                           const ObjectOptions& options = {});
    amd_id AddItem(const Reference& querySubject, std::string name,
                   const ObjectOptions& options = {});
    amd_id AddShortcut(const Reference& parent, std::string name, const ShortcutTarget& target,
                       const ObjectOptions& options = {});
    amd_id AddRelationship(const Reference& parent, std::string name, const JoinEnd& left,
                           const JoinEnd& right, std::string condition = {},
                           const ObjectOptions& options = {});
    /// Adds a relationship of class 136. Its cardinalities may be any numbers.
    amd_id AddRelationship136(const Reference& parent, std::string name, const JoinEnd& left,
                              const JoinEnd& right, std::string condition = {},
                              const ObjectOptions& options = {});
    amd_id AddRelationshipShortcut(const Reference& parent, std::string name,
                                   const RelationshipShortcutTarget& target,
                                   const ObjectOptions& options = {});
    amd_id AddFilter(const Reference& parent, std::string name, std::string condition,
                     const ObjectOptions& options = {});
    /// Adds a join that a query defines. It has no parent.
    amd_id AddSpecJoin(std::string name, const JoinEnd& left, const JoinEnd& right,
                       std::string condition = {}, const ObjectOptions& options = {});
    /// Adds a filter that a query defines. It has no parent.
    amd_id AddSpecFilter(std::string name, std::string condition,
                         const ObjectOptions& options = {});

    /// Makes the model. Throws a ModelError with everything that is wrong with it; the builder
    /// stays as it is and may be built again after more was added.
    [[nodiscard]] std::shared_ptr<const Model> Build() const;

private:
    ObjectDraft& Add(std::int32_t classCode, const Reference& parent, std::string name,
                     const ObjectOptions& options);
    amd_id AddJoin(std::int32_t classCode, const Reference& parent, std::string name,
                   const JoinEnd& left, const JoinEnd& right, std::string condition,
                   const ObjectOptions& options);
    amd_id NextId(std::int32_t classCode);

    std::string mLocale;
    std::deque<ObjectDraft> mDrafts;
    /// The ids that were asked for.
    std::set<amd_id> mTakenIds;
    std::map<std::int32_t, std::int32_t> mLastNumbers;
};

} // namespace qe::model

#endif
