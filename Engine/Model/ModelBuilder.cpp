#include "Engine/Model/ModelBuilder.h"

#include "Engine/Model/DraftCompiler.h"
#include "Engine/Model/Model.h"

#include <utility>

namespace qe::model {

ModelBuilder::ModelBuilder(std::string locale) : mLocale(std::move(locale))
{}

void ModelBuilder::Reserve(const amd_id& id)
{
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

ObjectDraft& ModelBuilder::Add(std::int32_t classCode, const Reference& holder, std::string name,
                               const ObjectOptions& options)
{
    ObjectDraft draft;
    draft.record.id = options.id == amd_id() ? NextId(classCode) : options.id;
    draft.classCode = classCode;
    draft.record.displayName = options.displayName.empty() ? name : options.displayName;
    draft.record.name = std::move(name);
    draft.record.locale = options.locale;
    draft.tag = options.tag;
    draft.holder = holder;
    mTakenIds.insert(draft.record.id);
    mDrafts.push_back(std::move(draft));
    return mDrafts.back();
}

amd_id ModelBuilder::AddNamespace(std::string name)
{
    return AddNamespace(Top, std::move(name));
}

amd_id ModelBuilder::AddNamespace(const Reference& holder, std::string name,
                                  const ObjectOptions& options)
{
    return Add(IdClassNamespace, holder, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddFolder(const Reference& holder, std::string name,
                               const ObjectOptions& options)
{
    return Add(IdClassFolder, holder, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddQuerySubject(const Reference& holder, std::string name,
                                     const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassQuerySubject, holder, std::move(name), options);
    draft.record.text = options.source;
    return draft.record.id;
}

amd_id ModelBuilder::AddItem(const Reference& querySubject, std::string name,
                             const ObjectOptions& options)
{
    return Add(IdClassQueryItem, querySubject, std::move(name), options).record.id;
}

amd_id ModelBuilder::AddShortcut(const Reference& holder, std::string name,
                                 const ShortcutTarget& target, const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassShortcut, holder, std::move(name), options);
    draft.referenced = target.object;
    draft.record.shortcutKind = target.kind;
    return draft.record.id;
}

amd_id ModelBuilder::AddJoin(std::int32_t classCode, const Reference& holder, std::string name,
                             const JoinEnd& left, const JoinEnd& right, std::string condition,
                             const ObjectOptions& options)
{
    ObjectDraft& draft = Add(classCode, holder, std::move(name), options);
    draft.left = left.subject;
    draft.right = right.subject;
    draft.record.leftCardinality = left.cardinality;
    draft.record.rightCardinality = right.cardinality;
    draft.record.text = std::move(condition);
    return draft.record.id;
}

amd_id ModelBuilder::AddRelationship(const Reference& holder, std::string name, const JoinEnd& left,
                                     const JoinEnd& right, std::string condition,
                                     const ObjectOptions& options)
{
    return AddJoin(IdClassRelationship, holder, std::move(name), left, right, std::move(condition),
                   options);
}

amd_id ModelBuilder::AddRelationship136(const Reference& holder, std::string name,
                                        const JoinEnd& left, const JoinEnd& right,
                                        std::string condition, const ObjectOptions& options)
{
    return AddJoin(IdClassRelationship136, holder, std::move(name), left, right,
                   std::move(condition), options);
}

amd_id ModelBuilder::AddSpecJoin(std::string name, const JoinEnd& left, const JoinEnd& right,
                                 std::string condition, const ObjectOptions& options)
{
    return AddJoin(IdClassSpecJoin, Top, std::move(name), left, right, std::move(condition),
                   options);
}

amd_id ModelBuilder::AddRelationshipShortcut(const Reference& holder, std::string name,
                                             const RelationshipShortcutTarget& target,
                                             const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassRelationshipShortcut, holder, std::move(name), options);
    draft.referenced = target.relationship;
    draft.left = target.left;
    draft.right = target.right;
    return draft.record.id;
}

amd_id ModelBuilder::AddFilter(const Reference& holder, std::string name, std::string condition,
                               const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassFilter, holder, std::move(name), options);
    draft.record.text = std::move(condition);
    return draft.record.id;
}

amd_id ModelBuilder::AddSpecFilter(std::string name, std::string condition,
                                   const ObjectOptions& options)
{
    ObjectDraft& draft = Add(IdClassSpecFilter, Top, std::move(name), options);
    draft.record.text = std::move(condition);
    return draft.record.id;
}

std::shared_ptr<const Model> ModelBuilder::Build() const
{
    return std::make_shared<const Model>(CompileDrafts(mDrafts), mLocale);
}

} // namespace qe::model
