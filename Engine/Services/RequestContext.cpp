#include "AQE_I_Authentication.h"
#include "AQE_Nag.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/MessageCatalogue.h"
#include "QERes.h"

#include <utility>

// Defined here, so that all modules share one virtual table and one type description.
AQE_I_Authentication::~AQE_I_Authentication() = default;

AQE_RequestContext::AQE_RequestContext(ECommandType commandType) : mCommandType(commandType)
{}

AQE_RequestContext::~AQE_RequestContext() = default;

void AQE_RequestContext::SetJoinCache(std::shared_ptr<AQE_JoinCache> cache)
{
    mJoinCache = std::move(cache);
}

void AQE_RequestContext::SetAuthentication(AQE_I_Authentication* authentication)
{
    mAuthentication = authentication;
}

void AQE_RequestContext::AddUserMessage(UserMessage message)
{
    mUserMessages.push_back(std::move(message));
}

void AQE_Nag::CreateMessage(AQE_RequestContext* context, QF_Message_V3::ESeverity severity,
                            QF_Message_V3::EType type, ORVMessage& message)
{
    if (context != nullptr)
        context->AddUserMessage({severity, type, message});
}

I18NString AQE_GetUserClassesString(const AQE_I_Authentication* authentication)
{
    I18NString text;
    if (authentication == nullptr)
        return text;
    bool first = true;
    for (const I18NString& userClass : authentication->GetUserClasses()) {
        if (!first)
            text += QERes::getString(qe::kListSeparatorText);
        text += userClass;
        first = false;
    }
    return text;
}
