#include "Engine/Model/Model.h"

#include "Engine/Model/MetadataObject.h"
#include "Engine/Model/NameLookup.h"
#include "amdi_object.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace qe::model {

Model::Model(ObjectTable table, std::string locale)
    : mTable(std::move(table)),
      mLocale(std::move(locale)),
      mNames(std::make_unique<NameLookup>(mTable)),
      mRoot(MakeMetadataObject(mRootRecord))
{
    mObjects.reserve(mTable.GetRecords().size());
    for (const ObjectRecord& record : mTable.GetRecords())
        mObjects.push_back(MakeMetadataObject(record));
    ListIds();
}

Model::~Model() = default;

void Model::ListIds()
{
    std::vector<const ObjectRecord*> records;
    for (const ObjectRecord& record : mTable.GetRecords()) {
        records.push_back(&record);
        mIdsByClass.push_back(record.id);
        if (IsJoinClass(record.id.classCode))
            mJoins.push_back(record.id);
        if (IsSubjectClass(record.id.classCode) &&
            GetTarget(record.id).classCode == IdClassQuerySubject)
            mSubjects.push_back(record.id);
    }
    // The ids of one domain come class by class.
    if (!std::ranges::is_sorted(mIdsByClass, {}, &amd_id::classCode))
        std::ranges::stable_sort(mIdsByClass, {}, &amd_id::classCode);
    std::stable_sort(records.begin(), records.end(),
                     [](const ObjectRecord* left, const ObjectRecord* right) {
                         return left->parent < right->parent;
                     });
    for (const ObjectRecord* record : records) {
        mParents.push_back(record->parent);
        mChildren.push_back(record->id);
    }
}

amdi_object* Model::GetObject(const amd_id& id) const
{
    if (id == kRootId)
        return mRoot.get();
    const ObjectRecord* record = mTable.Find(id);
    if (record == nullptr)
        return nullptr;
    return mObjects[static_cast<std::size_t>(record - mTable.GetRecords().data())].get();
}

std::span<const amd_id> Model::GetIds(std::int32_t classCode) const
{
    const auto first =
        std::partition_point(mIdsByClass.begin(), mIdsByClass.end(),
                             [&](const amd_id& id) { return id.classCode < classCode; });
    const auto last = std::partition_point(
        first, mIdsByClass.end(), [&](const amd_id& id) { return id.classCode == classCode; });
    return {first, last};
}

std::span<const amd_id> Model::GetChildren(const amd_id& parent) const
{
    const auto range = std::equal_range(mParents.begin(), mParents.end(), parent);
    const auto first = static_cast<std::size_t>(range.first - mParents.begin());
    const auto count = static_cast<std::size_t>(range.second - range.first);
    return std::span<const amd_id>(mChildren).subspan(first, count);
}

std::span<const amd_id> Model::GetItems(const amd_id& subject) const
{
    const amd_id target = GetTarget(subject);
    return target.classCode == IdClassQuerySubject ? GetChildren(target)
                                                   : std::span<const amd_id>();
}

amd_id Model::GetNamespace(const amd_id& id) const
{
    const ObjectRecord* record = mTable.Find(id);
    return record == nullptr ? amd_id() : record->space;
}

I18NLocale Model::GetLocale(const amd_id& id) const
{
    const ObjectRecord* record = mTable.Find(id);
    while (record != nullptr && record->locale.empty())
        record = mTable.Find(record->parent);
    return I18NLocale(record == nullptr ? mLocale : record->locale);
}

QualifiedName Model::GetQualifiedName(const amd_id& id) const
{
    return mNames->GetQualifiedName(id);
}

std::vector<amd_id> Model::FindByName(ENameKind nameKind, const QualifiedName& name) const
{
    return mNames->Match(nameKind, name);
}

std::vector<amd_id> Model::FindByName(ENameKind nameKind, std::string_view name) const
{
    std::vector<amd_id> found = FindByName(nameKind, ParseQualifiedName(name));
    return found.empty() ? FindByName(nameKind, QualifiedName{std::string(name)}) : found;
}

std::vector<std::string> Model::SuggestNames(ENameKind nameKind, std::string_view name) const
{
    return mNames->Suggest(nameKind, ParseQualifiedName(name));
}

amd_id Model::FindExact(ENameKind nameKind, const amd_id& scope, std::string_view name) const
{
    return mNames->FindExact(nameKind, scope, name);
}

amd_id Model::FindNamespace(std::string_view name) const
{
    return mNames->FindNamespace(name);
}

} // namespace qe::model
