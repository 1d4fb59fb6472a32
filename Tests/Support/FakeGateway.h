#ifndef TESTS_SUPPORT_FAKEGATEWAY_H
#define TESTS_SUPPORT_FAKEGATEWAY_H

#include "AQE_I_QuerySpecJoin.h"
#include "BMT_I_Association.h"
#include "Engine/Expression/ReferenceResolver.h"
#include "amd_id.h"
#include "amdi_gateway.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class amdi_object;

namespace qe::test {

/// A relationship of either kind as the metadata would hold it.
struct RelationshipFacts
{
    amd_id left;
    amd_id right;
    std::string expression;
    BMT_I_Association::CardinalityRange leftCardinality{11, 11};
    BMT_I_Association::CardinalityRange rightCardinality{11, 12};
};

/// Metadata with settable contents and no judgement of its own: broken chains, circles and objects
/// of the wrong class are welcome. Names are "class:number" unless SetName changes them.
class FakeGateway : public amdi_gateway, public expression::ReferenceResolver
{
public:
    FakeGateway();
    ~FakeGateway() override;

    amdi_object* GetObject(const amd_id& id) override;
    I18NLocale GetLocale(const amd_id& id) override;
    amd_id GetQualifierId(amd_id id) override;
    std::optional<expression::ResolvedReference>
    ResolveReference(const std::vector<I18NString>& names) override;

    void AddPlain(const amd_id& id);
    void AddShortcut(const amd_id& id, const amd_id& target, int kind = 0);
    void AddRelationship(const amd_id& id, const RelationshipFacts& facts);
    void AddRelationshipShortcut(const amd_id& id, const amd_id& target, const amd_id& left,
                                 const amd_id& right);
    void AddSpecJoin(const amd_id& id, const amd_id& left, const amd_id& right,
                     const std::string& expression,
                     AQE_I_QuerySpecJoin::CardinalityRange leftCardinality,
                     AQE_I_QuerySpecJoin::CardinalityRange rightCardinality);
    void AddFilter(const amd_id& id, const std::string& expression);
    void AddSpecFilter(const amd_id& id, const std::string& expression);

    /// Makes the gateway answer for `id` with the object that was added as `other`.
    void Alias(const amd_id& id, const amd_id& other);
    void SetName(const amd_id& id, const std::string& name);
    void SetParent(const amd_id& id, const amd_id& parent);
    void SetQualifier(const amd_id& id, const amd_id& qualifier);
    /// Lets the reference "names[0].names[1].names[2]" lead to an item through a query subject.
    void AddReference(const std::vector<std::string>& names, const amd_id& item,
                      const amd_id& subject);

    [[nodiscard]] int GetObjectCalls() const { return mObjectCalls; }

    struct Attributes
    {
        std::string name;
        amd_id parent;
    };

private:
    Attributes& AttributesOf(const amd_id& id);

    std::map<amd_id, std::shared_ptr<amdi_object>> mObjects;
    std::map<amd_id, std::unique_ptr<Attributes>> mAttributes;
    std::map<amd_id, amd_id> mQualifiers;
    std::map<std::vector<I18NString>, expression::ResolvedReference> mReferences;
    int mObjectCalls = 0;
};

} // namespace qe::test

#endif
