#ifndef EXAMPLES_EMBEDDING_TABLEGATEWAY_H
#define EXAMPLES_EMBEDDING_TABLEGATEWAY_H

#include "amdi_gateway.h"
#include "amdi_object.h"

#include <map>
#include <memory>

namespace host {

/// Shows the host's tables to the refiner. Each object is made when it is first asked for and
/// lives as long as the gateway.
class TableGateway : public amdi_gateway
{
public:
    TableGateway();
    ~TableGateway() override;

    [[nodiscard]] amdi_object* GetObject(const amd_id& id) override;
    /// Returns the one locale of this host.
    [[nodiscard]] I18NLocale GetLocale(const amd_id& id) override;
    /// Returns the folder of the object: this host has no namespaces.
    [[nodiscard]] amd_id GetQualifierId(amd_id id) override;

private:
    std::map<amd_id, std::unique_ptr<amdi_object>> mObjects;
};

} // namespace host

#endif
