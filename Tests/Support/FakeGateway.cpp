#include "Tests/Support/FakeGateway.h"

#include "amdi_filter.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

#include <utility>

namespace qe::test {

namespace {

template <typename Interface>
class Fake : public Interface
{
public:
    Fake(const amd_id& id, const FakeGateway::Attributes& attributes)
        : mId(id), mAttributes(attributes)
    {}

    amd_id GetId() const override { return mId; }
    I18NString GetName() const override { return mAttributes.name; }
    amd_id GetParentId() const override { return mAttributes.parent; }
    void GetDisplayName(I18NString& name) const override { name = mAttributes.name; }

private:
    amd_id mId;
    const FakeGateway::Attributes& mAttributes;
};

struct FakeShortcut : Fake<amdi_shortcut>
{
    using Fake::Fake;
    amd_id GetReferencedId() const override { return target; }
    int GetShortcutKind() const override { return kind; }
    amd_id target;
    int kind = 0;
};

struct FakeRelationship : Fake<amdi_relationship>
{
    using Fake::Fake;
    amd_id GetRightId() const override { return facts.right; }
    amd_id GetLeftId() const override { return facts.left; }
    CardinalityRange GetLeftCardinality() const override { return facts.leftCardinality; }
    CardinalityRange GetRightCardinality() const override { return facts.rightCardinality; }
    const char* GetExpressionText() const override { return facts.expression.c_str(); }
    RelationshipFacts facts;
};

struct FakeRelationshipShortcut : Fake<amdi_relationshipShortcut>
{
    using Fake::Fake;
    amd_id GetReferencedId() const override { return target; }
    amd_id GetRightId() const override { return right; }
    amd_id GetLeftId() const override { return left; }
    amd_id target;
    amd_id left;
    amd_id right;
};

struct FakeSpecJoin : Fake<AQE_I_QuerySpecJoin>
{
    using Fake::Fake;
    const char* GetExpressionText() const override { return expression.c_str(); }
    amd_id GetLeftId() const override { return left; }
    amd_id GetRightId() const override { return right; }
    CardinalityRange GetLeftCardinality() const override { return leftCardinality; }
    CardinalityRange GetRightCardinality() const override { return rightCardinality; }
    std::string expression;
    amd_id left;
    amd_id right;
    CardinalityRange leftCardinality;
    CardinalityRange rightCardinality;
};

template <typename Interface>
struct FakeCondition : Fake<Interface>
{
    using Fake<Interface>::Fake;
    const char* GetExpressionText() const override { return expression.c_str(); }
    std::string expression;
};

} // namespace

FakeGateway::FakeGateway() = default;
FakeGateway::~FakeGateway() = default;

amdi_object* FakeGateway::GetObject(const amd_id& id)
{
    ++mObjectCalls;
    const auto found = mObjects.find(id);
    return found == mObjects.end() ? nullptr : found->second.get();
}

I18NLocale FakeGateway::GetLocale(const amd_id& /*id*/)
{
    return I18NLocale("en");
}

amd_id FakeGateway::GetQualifierId(amd_id id)
{
    const auto found = mQualifiers.find(id);
    return found == mQualifiers.end() ? amd_id() : found->second;
}

std::optional<expression::ResolvedReference>
FakeGateway::ResolveReference(const std::vector<I18NString>& names)
{
    const auto found = mReferences.find(names);
    if (found == mReferences.end())
        return std::nullopt;
    return found->second;
}

void FakeGateway::AddPlain(const amd_id& id)
{
    mObjects[id] = std::make_shared<Fake<amdi_object>>(id, AttributesOf(id));
}

void FakeGateway::AddShortcut(const amd_id& id, const amd_id& target, int kind)
{
    auto shortcut = std::make_shared<FakeShortcut>(id, AttributesOf(id));
    shortcut->target = target;
    shortcut->kind = kind;
    mObjects[id] = std::move(shortcut);
}

void FakeGateway::AddRelationship(const amd_id& id, const RelationshipFacts& facts)
{
    auto relationship = std::make_shared<FakeRelationship>(id, AttributesOf(id));
    relationship->facts = facts;
    mObjects[id] = std::move(relationship);
}

void FakeGateway::AddRelationshipShortcut(const amd_id& id, const amd_id& target,
                                          const amd_id& left, const amd_id& right)
{
    auto shortcut = std::make_shared<FakeRelationshipShortcut>(id, AttributesOf(id));
    shortcut->target = target;
    shortcut->left = left;
    shortcut->right = right;
    mObjects[id] = std::move(shortcut);
}

void FakeGateway::AddSpecJoin(const amd_id& id, const amd_id& left, const amd_id& right,
                              const std::string& expression,
                              AQE_I_QuerySpecJoin::CardinalityRange leftCardinality,
                              AQE_I_QuerySpecJoin::CardinalityRange rightCardinality)
{
    auto join = std::make_shared<FakeSpecJoin>(id, AttributesOf(id));
    join->left = left;
    join->right = right;
    join->expression = expression;
    join->leftCardinality = leftCardinality;
    join->rightCardinality = rightCardinality;
    mObjects[id] = std::move(join);
}

void FakeGateway::AddFilter(const amd_id& id, const std::string& expression)
{
    auto filter = std::make_shared<FakeCondition<amdi_filter>>(id, AttributesOf(id));
    filter->expression = expression;
    mObjects[id] = std::move(filter);
}

void FakeGateway::AddSpecFilter(const amd_id& id, const std::string& expression)
{
    auto filter = std::make_shared<FakeCondition<amdi_specFilter>>(id, AttributesOf(id));
    filter->expression = expression;
    mObjects[id] = std::move(filter);
}

void FakeGateway::Alias(const amd_id& id, const amd_id& other)
{
    mObjects[id] = mObjects.at(other);
}

void FakeGateway::SetName(const amd_id& id, const std::string& name)
{
    AttributesOf(id).name = name;
}

void FakeGateway::SetParent(const amd_id& id, const amd_id& parent)
{
    AttributesOf(id).parent = parent;
}

void FakeGateway::SetQualifier(const amd_id& id, const amd_id& qualifier)
{
    mQualifiers[id] = qualifier;
}

void FakeGateway::AddReference(const std::vector<std::string>& names, const amd_id& item,
                               const amd_id& subject)
{
    mReferences[{names.begin(), names.end()}] = {item, subject};
}

FakeGateway::Attributes& FakeGateway::AttributesOf(const amd_id& id)
{
    auto& attributes = mAttributes[id];
    if (!attributes)
        attributes = std::make_unique<Attributes>(Attributes{ToText(id), {}});
    return *attributes;
}

} // namespace qe::test
