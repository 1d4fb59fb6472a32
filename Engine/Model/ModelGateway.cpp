#include "Engine/Model/ModelGateway.h"

#include "Engine/Model/Model.h"

#include <utility>

namespace qe::model {

using qe::expression::ResolvedReference;

namespace {

std::optional<ResolvedReference> FindItem(const Model& model, const amd_id& space,
                                          const I18NString& subjectName, const I18NString& itemName)
{
    const amd_id subject = model.FindExact(ENameKind::Subject, space, subjectName.View());
    if (subject == amd_id())
        return std::nullopt;
    const amd_id item = model.FindExact(ENameKind::Item, model.GetTarget(subject), itemName.View());
    if (item == amd_id())
        return std::nullopt;
    return ResolvedReference{item, subject};
}

/// Finds what lies in a namespace under that name. A subject is reached through itself.
std::optional<ResolvedReference> FindMember(const Model& model, const amd_id& space,
                                            const I18NString& name)
{
    const amd_id subject = model.FindExact(ENameKind::Subject, space, name.View());
    if (subject != amd_id())
        return ResolvedReference{subject, subject};
    const amd_id filter = model.FindExact(ENameKind::Filter, space, name.View());
    if (filter != amd_id())
        return ResolvedReference{filter, {}};
    return std::nullopt;
}

} // namespace

ModelGateway::ModelGateway(std::shared_ptr<const Model> model) : mModel(std::move(model))
{}

ModelGateway::~ModelGateway() = default;

amdi_object* ModelGateway::GetObject(const amd_id& id)
{
    return mModel->GetObject(id);
}

I18NLocale ModelGateway::GetLocale(const amd_id& id)
{
    return mModel->GetLocale(id);
}

amd_id ModelGateway::GetQualifierId(amd_id id)
{
    const ObjectRecord* const record = mModel->Find(id);
    if (record == nullptr)
        return {};
    return record->space == amd_id() ? kRootId : record->space;
}

std::optional<ResolvedReference>
ModelGateway::ResolveReference(const std::vector<I18NString>& names)
{
    if (names.size() != 2 && names.size() != 3)
        return std::nullopt;
    const amd_id space = mModel->FindNamespace(names[0].View());
    if (names.size() == 3)
        return space == amd_id() ? std::nullopt : FindItem(*mModel, space, names[1], names[2]);
    if (auto outside = FindItem(*mModel, {}, names[0], names[1]))
        return outside;
    return space == amd_id() ? std::nullopt : FindMember(*mModel, space, names[1]);
}

} // namespace qe::model
