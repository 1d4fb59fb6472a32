#ifndef ENGINE_MODEL_MODELGATEWAY_H
#define ENGINE_MODEL_MODELGATEWAY_H

#include "Engine/Expression/ReferenceResolver.h"
#include "QEENGINE_EXPORT.h"
#include "amdi_gateway.h"

#include <memory>
#include <optional>
#include <vector>

namespace qe::model {

class Model;

/// The access of the refiner to a model. It keeps the model alive; the objects that it returns live
/// as long as the model does. Nothing in it ever changes, so threads may share a gateway.
class QEENGINE_EXPORT ModelGateway : public amdi_gateway, public qe::expression::ReferenceResolver
{
public:
    /// Takes the model, which must not be null.
    explicit ModelGateway(std::shared_ptr<const Model> model);
    ~ModelGateway() override;

    [[nodiscard]] const Model& GetModel() const { return *mModel; }

    [[nodiscard]] amdi_object* GetObject(const amd_id& id) override;
    [[nodiscard]] I18NLocale GetLocale(const amd_id& id) override;
    /// Returns the nearest namespace around the object, or kRootId where there is none, so that
    /// what lies outside all namespaces has a qualifier too. The empty id for unknown objects.
    [[nodiscard]] amd_id GetQualifierId(amd_id id) override;

    /// Follows namespace, query subject or shortcut, item; or namespace and subject or filter; or,
    /// for what lies outside all namespaces, subject and item.
    [[nodiscard]] std::optional<qe::expression::ResolvedReference>
    ResolveReference(const std::vector<I18NString>& names) override;

private:
    std::shared_ptr<const Model> mModel;
};

} // namespace qe::model

#endif
