#include "JoinTree/CrossProductGovernor.h"

#include "AQE_Governors.h"
#include "AQE_I_Authentication.h"
#include "AQE_Nag.h"
#include "AQE_RequestContext.h"
#include "HBNMessage.h"
#include "Joins/GatewayCalls.h"
#include "Joins/UserSettings.h"
#include "QERes.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <cstddef>
#include <cstdint>

namespace qe {

namespace {

constexpr std::int32_t kNoCheck = 0;
constexpr std::int32_t kWarn = 1;
constexpr std::int32_t kDeny = 2;

constexpr int kHarmlessCommandType = 3;

} // namespace

CrossProductGovernor::CrossProductGovernor(const RefinerServices& services)
    : mGateway(services.gateway),
      mGovernors(services.governors),
      mRequestContext(services.requestContext)
{}

void CrossProductGovernor::CheckCrossProduct(const NamesText& names,
                                             const host::Failure& failure) const
{
    if (mGovernors == nullptr || mGovernors->crossProductAllowed == kNoCheck)
        return;
    if (mGovernors->crossProductAllowed == kWarn)
        Warn();
    else if (mGovernors->crossProductAllowed == kDeny)
        RaiseUnlessHarmless(names, failure);
}

void CrossProductGovernor::CheckCheapestTrees(const std::vector<amd_id>& subjects) const
{
    if (settings::IsDoNotApplyCrossProductGovernorOn() || mGovernors == nullptr)
        return;
    if (mGovernors->crossProductAllowed == kDeny)
        RaiseUnlessHarmless([&] { return JoinSubjectNames(subjects); },
                            host::kCrossProductOfCheapestTrees);
    else
        Warn();
}

I18NString CrossProductGovernor::GetPairNames(const amd_id& first, const amd_id& second) const
{
    const auto getName = [this](const amd_id& id) {
        const amdi_object* const object = FindObject(id);
        return object == nullptr ? I18NString() : object->GetName();
    };
    return getName(first) + QERes::getString(host::kNameSeparatorText) + getName(second);
}

I18NString CrossProductGovernor::JoinSubjectNames(const std::vector<amd_id>& subjects) const
{
    I18NString names;
    for (std::size_t position = 0; position < subjects.size(); ++position) {
        const amdi_object* const object = FindObject(subjects[position]);
        if (object == nullptr)
            continue;
        if (position > 0)
            names += QERes::getString(host::kNameSeparatorText);
        I18NString displayName;
        object->GetDisplayName(displayName);
        names += displayName;
    }
    return names;
}

const amdi_object* CrossProductGovernor::FindObject(const amd_id& id) const
{
    return mGateway == nullptr ? nullptr : mGateway->GetObject(id);
}

void CrossProductGovernor::Warn() const
{
    HBNMessage message(host::kCrossProductWarning);
    message.AddParameter(ORVMessageParm(GetUserClasses()));
    AQE_Nag::CreateMessage(mRequestContext, QF_Message_V3::SeverityWarning,
                           QF_Message_V3::TypeGovernor, message);
}

void CrossProductGovernor::RaiseUnlessHarmless(const NamesText& names,
                                               const host::Failure& failure) const
{
    if (mRequestContext != nullptr &&
        static_cast<int>(mRequestContext->GetCommandType()) == kHarmlessCommandType)
        return;
    RaiseFailure(failure, {names(), GetUserClasses()});
}

I18NString CrossProductGovernor::GetUserClasses() const
{
    return AQE_GetUserClassesString(
        mRequestContext == nullptr ? nullptr : mRequestContext->GetAuthentication());
}

} // namespace qe
