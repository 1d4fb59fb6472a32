#include "Engine/Model/MetadataObject.h"

#include "AQE_I_QuerySpecJoin.h"
#include "amdi_filter.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

namespace qe::model {

namespace {

/// The operations that every object has, on top of one of the interfaces.
template <typename Interface>
class RecordObject : public Interface
{
public:
    explicit RecordObject(const ObjectRecord& record) : mRecord(&record) {}

    [[nodiscard]] amd_id GetId() const override { return mRecord->id; }
    [[nodiscard]] I18NString GetName() const override { return mRecord->name; }
    [[nodiscard]] amd_id GetParentId() const override { return mRecord->parent; }
    void GetDisplayName(I18NString& name) const override { name = mRecord->displayName; }

protected:
    [[nodiscard]] const ObjectRecord& Record() const { return *mRecord; }

private:
    const ObjectRecord* mRecord;
};

class Shortcut final : public RecordObject<amdi_shortcut>
{
public:
    using RecordObject::RecordObject;
    [[nodiscard]] amd_id GetReferencedId() const override { return Record().referenced; }
    [[nodiscard]] int GetShortcutKind() const override { return Record().shortcutKind; }
};

class Relationship final : public RecordObject<amdi_relationship>
{
public:
    using RecordObject::RecordObject;
    [[nodiscard]] amd_id GetRightId() const override { return Record().right; }
    [[nodiscard]] amd_id GetLeftId() const override { return Record().left; }
    [[nodiscard]] CardinalityRange GetLeftCardinality() const override
    {
        return Record().leftCardinality;
    }
    [[nodiscard]] CardinalityRange GetRightCardinality() const override
    {
        return Record().rightCardinality;
    }
    [[nodiscard]] const char* GetExpressionText() const override { return Record().text.c_str(); }
};

class RelationshipShortcut final : public RecordObject<amdi_relationshipShortcut>
{
public:
    using RecordObject::RecordObject;
    [[nodiscard]] amd_id GetReferencedId() const override { return Record().referenced; }
    [[nodiscard]] amd_id GetRightId() const override { return Record().right; }
    [[nodiscard]] amd_id GetLeftId() const override { return Record().left; }
};

class SpecJoin final : public RecordObject<AQE_I_QuerySpecJoin>
{
public:
    using RecordObject::RecordObject;
    using Range = AQE_I_QuerySpecJoin::CardinalityRange;

    [[nodiscard]] const char* GetExpressionText() const override { return Record().text.c_str(); }
    [[nodiscard]] amd_id GetLeftId() const override { return Record().left; }
    [[nodiscard]] amd_id GetRightId() const override { return Record().right; }
    [[nodiscard]] Range GetLeftCardinality() const override
    {
        return Convert(Record().leftCardinality);
    }
    [[nodiscard]] Range GetRightCardinality() const override
    {
        return Convert(Record().rightCardinality);
    }

private:
    static Range Convert(const qe::model::CardinalityRange& range)
    {
        return {Convert(range.minimum), Convert(range.maximum)};
    }

    static ECardinality Convert(std::int32_t bound)
    {
        switch (bound) {
        case BMT_I_Association::CardinalityZero:
            return QuerySpecCardinalityZero;
        case BMT_I_Association::CardinalityOne:
            return QuerySpecCardinalityOne;
        case BMT_I_Association::CardinalityMany:
            return QuerySpecCardinalityMany;
        default:
            return QuerySpecCardinalityUnknown;
        }
    }
};

template <typename Interface>
class Filter final : public RecordObject<Interface>
{
public:
    using RecordObject<Interface>::RecordObject;
    [[nodiscard]] const char* GetExpressionText() const override
    {
        return this->Record().text.c_str();
    }
};

} // namespace

std::unique_ptr<amdi_object> MakeMetadataObject(const ObjectRecord& record)
{
    switch (record.id.classCode) {
    case IdClassShortcut:
        return std::make_unique<Shortcut>(record);
    case IdClassRelationship:
    case IdClassRelationship136:
        return std::make_unique<Relationship>(record);
    case IdClassRelationshipShortcut:
        return std::make_unique<RelationshipShortcut>(record);
    case IdClassSpecJoin:
        return std::make_unique<SpecJoin>(record);
    case IdClassFilter:
        return std::make_unique<Filter<amdi_filter>>(record);
    case IdClassSpecFilter:
        return std::make_unique<Filter<amdi_specFilter>>(record);
    default:
        return std::make_unique<RecordObject<amdi_object>>(record);
    }
}

} // namespace qe::model
