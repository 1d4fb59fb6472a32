#include "Tests/Source/Reference/TreeServices.h"

#include "AQE_I_Authentication.h"
#include "AQE_Nag.h"
#include "AUT_I_UserConfiguration.h"
#include "AUT_LogException.h"
#include "HBNException.h"
#include "QERes.h"
#include "amdi_object.h"

#include <algorithm>
#include <cstddef>

namespace qe::test {

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

void AppendOnce(Ids& ids, const amd_id& id)
{
    if (!Contains(ids, id))
        ids.push_back(id);
}

int ReadSetting(const char* section, const char* key, int defaultValue)
{
    return AUT_I_UserConfiguration::Create(RootKeyUser)->GetInt(section, key, defaultValue);
}

std::optional<AQE_I_Refiner::QEjoinInfo> TreeServices::ReadJoin(const amd_id& join,
                                                                EShortcutJoins which) const
{
    AQE_I_Refiner::QEjoinInfo info;
    if (AQE_I_Refiner::GetJoinInfo(gateway, context, join, info))
        return info;
    if (which == EShortcutJoins::Read && shortcutInfo != nullptr &&
        shortcutInfo->GetJoinInfo(join, info))
        return info;
    return std::nullopt;
}

void TreeServices::CheckCrossProduct(const I18NString& names, int line) const
{
    if (governors == nullptr)
        return;
    if (governors->crossProductAllowed == 1)
        Warn();
    if (governors->crossProductAllowed == 2)
        RaiseCrossProduct(names, line);
}

void TreeServices::CheckCheapestTrees(const Ids& subjects) const
{
    if (ReadSetting("QueryEngine", "DoNotApplyCrossProductGovernor", 0) != 0 ||
        governors == nullptr)
        return;
    if (governors->crossProductAllowed == 2)
        RaiseCrossProduct(DisplayNamesOf(subjects), 547);
    else
        Warn();
}

void TreeServices::Warn() const
{
    HBNMessage message(0xA9E29A41);
    message.AddParameter(ORVMessageParm(GetUserClasses()));
    AQE_Nag::CreateMessage(context, QF_Message_V3::SeverityWarning, QF_Message_V3::TypeGovernor,
                           message);
}

void TreeServices::RaiseCrossProduct(const I18NString& names, int line) const
{
    if (context != nullptr && context->GetCommandType() == 3)
        return;
    const char* const source = "Source/QEJoinTree";
    HBNException error(1, 101);
    HBNAddMessages(error, 0xA9EE8A4D, 2, names, GetUserClasses(), "", "", "", "");
    AUT_LogException(error, source, line);
    ORV_THROW(error, source, line, "QE");
}

I18NString TreeServices::GetUserClasses() const
{
    return AQE_GetUserClassesString(context == nullptr ? nullptr : context->GetAuthentication());
}

I18NString TreeServices::NameOf(const amd_id& id) const
{
    const amdi_object* const object = gateway->GetObject(id);
    return object == nullptr ? I18NString() : object->GetName();
}

I18NString TreeServices::DisplayNamesOf(const Ids& ids) const
{
    I18NString names;
    for (std::size_t k = 0; k < ids.size(); ++k) {
        const amdi_object* const object = gateway->GetObject(ids[k]);
        if (object == nullptr)
            continue;
        // Those without object have no name, but count.
        if (k > 0)
            names += QERes::getString(29);
        I18NString name;
        object->GetDisplayName(name);
        names += name;
    }
    return names;
}

} // namespace qe::test
