#include "Engine/Model/ModelBuilder.h"

#include "Engine/Model/DraftCompiler.h"
#include "Engine/Model/Model.h"

#include <utility>

namespace qe::model {

ModelBuilder::ModelBuilder(std::string locale) : mLocale(std::move(locale))
{}

void ModelBuilder::Reserve(const amd_id& id)
{
    if (id != amd_id())
        mTakenIds.insert(id);
}

amd_id ModelBuilder::NextId(std::int32_t classCode)
{
    std::int32_t& number = mLastNumbers[classCode];
    amd_id id;
    do
        id = amd_id(0, classCode, ++number);
    while (mTakenIds.count(id) != 0);
    return id;
}

ObjectDraft& ModelBuilder::Add(std::int32_t classCode, const Reference& parent, std::string name,
                               const ObjectOptions& options)
{
    ObjectDraft& draft = mDrafts.emplace_back();
    try {
        draft.record.id = options.id == amd_id() ? NextId(classCode) : options.id;
        draft.classCode = classCode;
        draft.record.displayName = options.displayName.empty() ? name : options.displayName;
        draft.record.name = std::move(name);
        draft.record.locale = options.locale;
        draft.tag = options.tag;
        draft.parent = parent;
        Reserve(options.id);
    } catch (...) {
        mDrafts.pop_back();
        throw;
    }
    return draft;
}

amd_id ModelBuilder::AddNamespace(std::string name)
{
    return AddNamespace(kTop, std::move(name));
}

amd_id ModelBuilder::AddNamespace(const Reference& parent, std::string name,
                                  const ObjectOptions& options)
{
    return Add(IdClassNamespace, parent, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddFolder(const Reference& parent, std::string name,
                               const ObjectOptions& options)
{
    return Add(IdClassFolder, parent, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddQuerySubject(const Reference& parent, std::string name,
                                     const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassQuerySubject, parent, std::move(name), options);
    draft.record.text = options.source;
    draft.record.keys = options.keys;
    return draft.record.id;
}

amd_id ModelBuilder::AddItem(const Reference& querySubject, std::string name,
                             const ObjectOptions& options)
{
    return Add(IdClassQueryItem, querySubject, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddShortcut(const Reference& parent, std::string name,
                                 const ShortcutTarget& target, const ObjectOptions& options)
{
    auto links = std::make_unique<DraftLinks>(DraftLinks{.referenced = target.object});
    ObjectDraft& draft = Add(IdClassShortcut, parent, std::move(name), options);
    draft.links = std::move(links);
    draft.record.shortcutKind = target.kind;
    return draft.record.id;
}

amd_id ModelBuilder::AddJoin(std::int32_t classCode, const Reference& parent, std::string name,
                             const JoinEnd& left, const JoinEnd& right, std::string condition,
                             const ObjectOptions& options)
{
    auto links =
        std::make_unique<DraftLinks>(DraftLinks{.left = left.subject, .right = right.subject});
    ObjectDraft& draft = Add(classCode, parent, std::move(name), options);
    draft.links = std::move(links);
    draft.record.leftCardinality = left.cardinality;
    draft.record.rightCardinality = right.cardinality;
    draft.record.text = std::move(condition);
    return draft.record.id;
}

amd_id ModelBuilder::AddRelationship(const Reference& parent, std::string name, const JoinEnd& left,
                                     const JoinEnd& right, std::string condition,
                                     const ObjectOptions& options)
{
    return AddJoin(IdClassRelationship, parent, std::move(name), left, right, std::move(condition),
                   options);
}

amd_id ModelBuilder::AddRelationship136(const Reference& parent, std::string name,
                                        const JoinEnd& left, const JoinEnd& right,
                                        std::string condition, const ObjectOptions& options)
{
    return AddJoin(IdClassRelationship136, parent, std::move(name), left, right,
                   std::move(condition), options);
}

amd_id ModelBuilder::AddSpecJoin(std::string name, const JoinEnd& left, const JoinEnd& right,
                                 std::string condition, const ObjectOptions& options)
{
    return AddJoin(IdClassSpecJoin, kTop, std::move(name), left, right, std::move(condition),
                   options);
}

amd_id ModelBuilder::AddRelationshipShortcut(const Reference& parent, std::string name,
                                             const RelationshipShortcutTarget& target,
                                             const ObjectOptions& options)
{
    auto links = std::make_unique<DraftLinks>(
        DraftLinks{.referenced = target.relationship, .left = target.left, .right = target.right});
    ObjectDraft& draft = Add(IdClassRelationshipShortcut, parent, std::move(name), options);
    draft.links = std::move(links);
    return draft.record.id;
}

amd_id ModelBuilder::AddFilter(const Reference& parent, std::string name, std::string condition,
                               const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassFilter, parent, std::move(name), options);
    draft.record.text = std::move(condition);
    return draft.record.id;
}

amd_id ModelBuilder::AddSpecFilter(std::string name, std::string condition,
                                   const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassSpecFilter, kTop, std::move(name), options);
    draft.record.text = std::move(condition);
    return draft.record.id;
}

std::shared_ptr<const Model> ModelBuilder::Build() const
{
    return std::make_shared<const Model>(CompileDrafts(mDrafts), mLocale);
}

} // namespace qe::model
