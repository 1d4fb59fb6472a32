#include "TableGateway.h"

#include "HostTables.h"
#include "IdClass.h"
#include "amdi_relationship.h"
#include "amdi_shortcut.h"

#include <algorithm>

namespace host {

namespace {

/// What objects of every class tell of themselves.
template <typename Interface>
class RowObject : public Interface
{
public:
    explicit RowObject(const Row& row) : mRow(row) {}

    amd_id GetId() const override { return mRow.id; }
    I18NString GetName() const override { return mRow.name; }
    amd_id GetParentId() const override { return mRow.parent; }
    void GetDisplayName(I18NString& name) const override { name = mRow.name; }

protected:
    const Row& GetRow() const { return mRow; }

private:
    const Row& mRow;
};

class RowShortcut : public RowObject<amdi_shortcut>
{
public:
    using RowObject::RowObject;

    amd_id GetReferencedId() const override { return GetRow().target; }
    int GetShortcutKind() const override { return 0; }
};

class RowJoin : public RowObject<amdi_relationship>
{
public:
    using RowObject::RowObject;

    amd_id GetRightId() const override { return GetRow().right; }
    amd_id GetLeftId() const override { return GetRow().left; }
    CardinalityRange GetLeftCardinality() const override { return GetRow().leftRange; }
    CardinalityRange GetRightCardinality() const override { return GetRow().rightRange; }
    const char* GetExpressionText() const override { return GetRow().condition; }
};

/// The refiner trusts the class of an id: what says it is of class 102 must be a relationship.
std::unique_ptr<amdi_object> MakeObject(const Row& row)
{
    switch (row.id.classCode) {
    case IdClassShortcut:
        return std::make_unique<RowShortcut>(row);
    case IdClassRelationship:
        return std::make_unique<RowJoin>(row);
    default:
        return std::make_unique<RowObject<amdi_object>>(row);
    }
}

} // namespace

TableGateway::TableGateway() = default;
TableGateway::~TableGateway() = default;

amdi_object* TableGateway::GetObject(const amd_id& id)
{
    if (const auto known = mObjects.find(id); known != mObjects.end())
        return known->second.get();
    const auto& tables = GetTables();
    const auto row =
        std::find_if(tables.begin(), tables.end(), [&](const Row& r) { return r.id == id; });
    if (row == tables.end())
        return nullptr;
    return mObjects.emplace(id, MakeObject(*row)).first->second.get();
}

I18NLocale TableGateway::GetLocale(const amd_id& /*id*/)
{
    return I18NLocale("en");
}

amd_id TableGateway::GetQualifierId(amd_id id)
{
    const amdi_object* const object = GetObject(id);
    return object == nullptr ? amd_id() : object->GetParentId();
}

} // namespace host
